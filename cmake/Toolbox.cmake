# How a target of this project is declared: warnings, include paths, the layers that it may use.

add_library(velquin_build_options INTERFACE)
target_compile_options(velquin_build_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wcast-align -Wunused -Wnull-dereference -Wimplicit-fallthrough
  # The source paths that assertions print begin at src/, wherever the checkout lies.
  "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/src/="
  # Identical results on every machine: no contraction of a * b + c.
  -ffp-contract=off)
# The project handles signals and slots by name of the function, and text by an explicit encoding.
target_compile_definitions(velquin_build_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(VELQUIN_WERROR)
  target_compile_options(velquin_build_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND (VELQUIN_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL "Release"))
  # GCC 12 reports null dereferences and unset values on paths that only its instrumentation or inlining creates.
  target_compile_options(velquin_build_options INTERFACE -Wno-null-dereference -Wno-maybe-uninitialized)
endif()
if(VELQUIN_SANITIZE)
  target_compile_options(velquin_build_options INTERFACE
    -fsanitize=${VELQUIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(velquin_build_options INTERFACE -fsanitize=${VELQUIN_SANITIZE})
endif()

# velquin_library(name SOURCES ... HEADERS ... USES ... PRIVATE_USES ...)
# Each of HEADERS compiles alone: its source includes it first of all, which the test "layers" checks, and one
# without a source is compiled by itself against what the target may use.
function(velquin_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;USES;PRIVATE_USES" ${ARGN})
  list(TRANSFORM ARG_SOURCES PREPEND ${CMAKE_SOURCE_DIR}/src/)
  list(TRANSFORM ARG_HEADERS PREPEND ${CMAKE_SOURCE_DIR}/src/)
  set(alone ${ARG_HEADERS})
  foreach(source IN LISTS ARG_SOURCES)
    string(REGEX REPLACE "[.]cpp$" ".h" header ${source})
    list(REMOVE_ITEM alone ${header})
  endforeach()
  set(target velquin_${name})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_SOURCE_DIR}/src FILES ${alone})
  # moc looks at the headers of a target among its sources.
  target_sources(${target} PRIVATE ${ARG_HEADERS})
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${target} PUBLIC ${ARG_USES} PRIVATE velquin_build_options ${ARG_PRIVATE_USES})
  if("${ARG_USES}" MATCHES "Qt6::|velquin_platform|velquin_reading|velquin_axes|velquin_model|velquin_render|velquin_shell")
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
  endif()
endfunction()

# velquin_test(name SOURCES ... USES ... [GUI]): one executable and one ctest for a target's tests.
function(velquin_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_executable(test_${name} ${ARG_SOURCES})
  target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(test_${name} PRIVATE velquin_build_options ${ARG_USES} GTest::gtest GTest::gmock Threads::Threads)
  # Half of a test's compilation is headers that its neighbours include, too.
  set_target_properties(test_${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
  add_test(NAME ${name} COMMAND test_${name})
  set(environment QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC)
  if(VELQUIN_SANITIZE STREQUAL "thread")
    # A program that a test starts leaves its vfork in ThreadSanitizer's books, which would end at the next thread.
    list(APPEND environment
      "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/tsan-suppressions.txt die_after_fork=0")
  endif()
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${environment}")
endfunction()
