# commandline: the options, and what is written about them.
velquin_library(commandline
  HEADERS
    CommandLine.h
    CommandLineTexts.h
  SOURCES
    CommandLine.cpp
    CommandLineTexts.cpp
  USES velquin_model)
