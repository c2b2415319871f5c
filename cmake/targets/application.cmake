# application: what surrounds the documents.
velquin_library(application
  HEADERS
    ApplicationDelegate.h
  SOURCES
    ApplicationDelegate.cpp
  USES velquin_shell Qt6::Network)
set_target_properties(velquin_application PROPERTIES AUTOUIC ON)
