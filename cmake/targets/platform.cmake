# platform: what a desktop framework offers the model, on Qt Core alone.
velquin_library(platform
  HEADERS
    Platform/Core/Observable.h
  SOURCES
    Platform/Core/Observable.cpp
  USES velquin_core Qt6::Core
  PRIVATE_USES PkgConfig::plist)
