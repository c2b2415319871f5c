# packaging: what is installed beside the program. Manual page, completions and icons are made by a tool that is built
# from the program's own sources; a cross build runs it in CMAKE_CROSSCOMPILING_EMULATOR, or names one of the same
# version that runs here.
set(VELQUIN_PACKAGING_TOOL "" CACHE FILEPATH "A native velquin_packaging_tool, for cross builds without an emulator")
include(GNUInstallDirs)

if(VELQUIN_PACKAGING_TOOL)
  add_executable(velquin_packaging_tool IMPORTED)
  set_target_properties(velquin_packaging_tool PROPERTIES IMPORTED_LOCATION ${VELQUIN_PACKAGING_TOOL})
else()
  add_executable(velquin_packaging_tool
    src/PackagingTool.cpp)
  target_link_libraries(velquin_packaging_tool PRIVATE velquin_build_options velquin_commandline Qt6::Svg)
endif()

string(REPLACE / - VELQUIN_MIME_ICON ${VELQUIN_MIME_TYPE})
set(ENV{SOURCE_DATE_EPOCH} ${VELQUIN_RELEASE_TIME})
string(TIMESTAMP VELQUIN_RELEASE_DATE %Y-%m-%d UTC)
string(TIMESTAMP VELQUIN_RELEASE_YEAR %Y UTC)
string(TIMESTAMP VELQUIN_RELEASE_RFC_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
unset(ENV{SOURCE_DATE_EPOCH})

set(made ${CMAKE_BINARY_DIR}/packaging)
set(templates ${CMAKE_SOURCE_DIR}/packaging)
set(made_files)

# velquin_installed_text(template name folder): fills a template in.
function(velquin_installed_text template name folder)
  configure_file(${templates}/${template}.in ${made}/${name} @ONLY)
  install(FILES ${made}/${name} DESTINATION ${folder})
endfunction()

# velquin_made(output folder name form [input [size]]): a file that the tool makes; gzipped where its name says so.
macro(velquin_made output folder name form)
  set(inputs ${ARGN})
  list(FILTER inputs INCLUDE REGEX /)
  set(commands COMMAND velquin_packaging_tool ${form} ${made}/${output} ${ARGN})
  set(result ${made}/${output})
  if("${name}" MATCHES "\\.gz$")
    list(APPEND commands COMMAND gzip -9nf ${made}/${output})
    set(result ${made}/${output}.gz)
  endif()
  add_custom_command(OUTPUT ${result} ${commands} DEPENDS velquin_packaging_tool ${inputs} VERBATIM)
  list(APPEND made_files ${result})
  install(FILES ${result} DESTINATION ${folder} RENAME ${name})
endmacro()

install(TARGETS velquin DESTINATION ${CMAKE_INSTALL_BINDIR})
velquin_installed_text(velquin.desktop ${VELQUIN_ID}.desktop ${CMAKE_INSTALL_DATADIR}/applications)
velquin_installed_text(mime.xml ${VELQUIN_ID}.xml ${CMAKE_INSTALL_DATADIR}/mime/packages)
velquin_installed_text(metainfo.xml ${VELQUIN_ID}.metainfo.xml ${CMAKE_INSTALL_DATADIR}/metainfo)
velquin_installed_text(copyright copyright ${CMAKE_INSTALL_DATADIR}/doc/velquin)

set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(kind apps mimetypes)
  if(kind STREQUAL apps)
    set(drawing ${CMAKE_SOURCE_DIR}/src/Resources/velquin.svg)
    set(name ${VELQUIN_ID})
  else()
    set(drawing ${templates}/document.svg)
    set(name ${VELQUIN_MIME_ICON})
  endif()
  install(FILES ${drawing} DESTINATION ${icons}/scalable/${kind} RENAME ${name}.svg)
  velquin_made(${kind}-48.png ${icons}/48x48/${kind} ${name}.png icon ${drawing} 48)
endforeach()

configure_file(${templates}/velquin.1.in ${made}/velquin.1.in @ONLY)
velquin_made(velquin.1 ${CMAKE_INSTALL_MANDIR}/man1 velquin.1.gz man ${made}/velquin.1.in)
velquin_made(velquin.bash ${CMAKE_INSTALL_DATADIR}/bash-completion/completions velquin bash)
velquin_made(_velquin ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions _velquin zsh)
velquin_made(velquin.fish ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d velquin.fish fish)

configure_file(${templates}/changelog.in ${made}/changelog @ONLY)
add_custom_command(OUTPUT ${made}/changelog.gz COMMAND gzip -9nkf ${made}/changelog
  DEPENDS ${made}/changelog VERBATIM)
list(APPEND made_files ${made}/changelog.gz)
install(FILES ${made}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velquin)

add_custom_target(velquin_packaging ALL DEPENDS ${made_files})
