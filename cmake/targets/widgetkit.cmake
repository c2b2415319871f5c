# widgetkit: the look of the program and its small views, on Qt Widgets alone. No model reaches it.
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
velquin_library(widgetkit
  HEADERS
    Platform/Widgets/Appearance.h
    Platform/Widgets/DesktopSettings.h
    Platform/Widgets/Pictures.h
    Platform/Widgets/StylePainting.h
    Platform/Widgets/ThemeColors.h
    Platform/Widgets/VelquinStyle.h
  SOURCES
    Platform/Widgets/Appearance.cpp
    Platform/Widgets/DesktopSettings.cpp
    Platform/Widgets/Pictures.cpp
    Platform/Widgets/StylePainting.cpp
    Platform/Widgets/ThemeColors.cpp
    Platform/Widgets/VelquinStyle.cpp
    Platform/Widgets/VelquinStyleDrawing.cpp
  USES velquin_platform Qt6::Widgets Qt6::Svg
  PRIVATE_USES Qt6::DBus)
target_sources(velquin_widgetkit PRIVATE ${CMAKE_SOURCE_DIR}/src/Resources/velquin.qrc)
set_target_properties(velquin_widgetkit PROPERTIES AUTORCC ON AUTOUIC ON)
