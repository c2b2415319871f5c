# application: what surrounds the documents.
find_package(PkgConfig REQUIRED)
pkg_check_modules(xcb REQUIRED IMPORTED_TARGET xcb)
velquin_library(application
  HEADERS
    ApplicationDelegate.h
    Classes/SingleInstance/DesktopSession.h
    Classes/SingleInstance/InstanceClaim.h
    Classes/SingleInstance/InstanceMessage.h
    Classes/SingleInstance/InstancePlace.h
    Classes/SingleInstance/InstanceServer.h
  SOURCES
    ApplicationDelegate.cpp
    Classes/SingleInstance/DesktopSession.cpp
    Classes/SingleInstance/InstanceClaim.cpp
    Classes/SingleInstance/InstanceMessage.cpp
    Classes/SingleInstance/InstancePlace.cpp
    Classes/SingleInstance/InstanceServer.cpp
  USES velquin_shell Qt6::Network
  PRIVATE_USES PkgConfig::xcb)
set_target_properties(velquin_application PROPERTIES AUTOUIC ON)
