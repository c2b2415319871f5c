# core: values and algorithms on the standard library alone. No Qt include path reaches it.
velquin_library(core
  HEADERS
    Core/Assertions.h
  SOURCES
    Core/Assertions.cpp
  USES Threads::Threads)
