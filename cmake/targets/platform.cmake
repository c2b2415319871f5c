# platform: what a desktop framework offers the model, on Qt Core alone.
velquin_library(platform
  HEADERS
    Classes/ValueEncodings/LiteralDump.h
    Classes/ValueEncodings/XKeyValue.h
    Classes/ValueEncodings/XUtility.h
    Platform/Core/Log.h
    Platform/Core/MainThread.h
    Platform/Core/NotificationCenter.h
    Platform/Core/Observable.h
    Platform/Core/OperationQueue.h
    Platform/Core/UserDefaults.h
    Platform/Core/XViewController.h
  SOURCES
    Classes/ValueEncodings/LiteralDump.cpp
    Classes/ValueEncodings/XKeyValue.cpp
    Classes/ValueEncodings/XUtility.cpp
    Platform/Core/Log.cpp
    Platform/Core/MainThread.cpp
    Platform/Core/NotificationCenter.cpp
    Platform/Core/Observable.cpp
    Platform/Core/OperationQueue.cpp
    Platform/Core/UserDefaults.cpp
  USES velquin_core Qt6::Core
  PRIVATE_USES PkgConfig::plist)
