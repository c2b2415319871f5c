# velquin: the program.
add_executable(velquin
  src/BatchRun.cpp
  src/CommandLine.cpp
  src/CsvExport.cpp
  src/DocumentRequest.cpp
  src/OutputFile.cpp
  src/WindowRun.cpp
  src/main.cpp)
set_target_properties(velquin PROPERTIES AUTOMOC ON)
target_compile_definitions(velquin PRIVATE VELQUIN_VERSION="${PROJECT_VERSION}")
target_link_libraries(velquin PRIVATE velquin_build_options velquin_shell velquin_sourceviews)
