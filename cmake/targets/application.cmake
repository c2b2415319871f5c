# application: what surrounds the documents.
find_package(PkgConfig REQUIRED)
pkg_check_modules(xcb REQUIRED IMPORTED_TARGET xcb)
velquin_library(application
  HEADERS
    ApplicationDelegate.h
    Classes/PlotInspector/AxisKeys.h
    Classes/PlotInspector/AxisLimitField.h
    Classes/PlotInspector/AxisOptionsView.h
    Classes/Recovery/AutosaveController.h
    Classes/Recovery/AutosaveFile.h
    Classes/Recovery/AutosaveFolder.h
    Classes/Recovery/AutosaveRecord.h
    Classes/Recovery/AutosaveSchedule.h
    Classes/Recovery/DocumentSafety.h
    Classes/Recovery/EndSignals.h
    Classes/Recovery/ProcessIdentity.h
    Classes/Recovery/RecoveryOffer.h
    Classes/SingleInstance/DesktopSession.h
    Classes/SingleInstance/InstanceClaim.h
    Classes/SingleInstance/InstanceMessage.h
    Classes/SingleInstance/InstancePlace.h
    Classes/SingleInstance/InstanceServer.h
    Classes/Updates/FeedDownload.h
    Classes/Updates/ReleaseFeed.h
    Classes/Updates/UpdateController.h
    Classes/Updates/Version.h
    Classes/WindowControllers/AboutWindowController.h
    Classes/WindowControllers/PreferencesWindowController.h
    Classes/WindowControllers/ToolStacking.h
    Classes/WindowControllers/XPlotInspectorWindowController.h
    Classes/WindowControllers/XWindowController.h
  SOURCES
    ApplicationDelegate.cpp
    Classes/PlotInspector/AxisLimitField.cpp
    Classes/PlotInspector/AxisOptionsView.cpp
    Classes/Recovery/AutosaveController.cpp
    Classes/Recovery/AutosaveFile.cpp
    Classes/Recovery/AutosaveFolder.cpp
    Classes/Recovery/AutosaveRecord.cpp
    Classes/Recovery/DocumentSafety.cpp
    Classes/Recovery/EndSignals.cpp
    Classes/Recovery/ProcessIdentity.cpp
    Classes/Recovery/RecoveryOffer.cpp
    Classes/SingleInstance/DesktopSession.cpp
    Classes/SingleInstance/InstanceClaim.cpp
    Classes/SingleInstance/InstanceMessage.cpp
    Classes/SingleInstance/InstancePlace.cpp
    Classes/SingleInstance/InstanceServer.cpp
    Classes/Updates/FeedDownload.cpp
    Classes/Updates/ReleaseFeed.cpp
    Classes/Updates/UpdateController.cpp
    Classes/Updates/Version.cpp
    Classes/WindowControllers/AboutWindowController.cpp
    Classes/WindowControllers/PreferencesWindowController.cpp
    Classes/WindowControllers/ToolStacking.cpp
    Classes/WindowControllers/XPlotInspectorWindowController.cpp
    Classes/WindowControllers/XWindowController.cpp
  USES velquin_shell Qt6::Network
  PRIVATE_USES PkgConfig::xcb)
set_target_properties(velquin_application PROPERTIES AUTOUIC ON)
