# reading: a byte stream becomes a table, on a thread of its own.
velquin_library(reading
  HEADERS
    EmbeddedPlugins/TextFile/TableBuilder.h
    EmbeddedPlugins/TextFile/XPDataReader.h
  SOURCES
    EmbeddedPlugins/TextFile/TableBuilder.cpp
    EmbeddedPlugins/TextFile/XPDataReader.cpp
  USES velquin_platform)
