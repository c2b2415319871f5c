# velquin: the program.
add_executable(velquin
  src/BatchRun.cpp
  src/CsvExport.cpp
  src/DocumentRequest.cpp
  src/OutputFile.cpp
  src/WindowRun.cpp
  src/main.cpp)
set_target_properties(velquin PROPERTIES AUTOMOC ON)
target_link_libraries(velquin PRIVATE velquin_build_options velquin_commandline velquin_application velquin_sourceviews)
