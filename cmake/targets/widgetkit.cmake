# widgetkit: the look of the program and its small views, on Qt Widgets alone. No model reaches it.
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
velquin_library(widgetkit
  HEADERS
    Classes/CurvesSidebar/CFlippedView.h
    Classes/CurvesSidebar/CSmartListView.h
    Classes/DropHere/DroppedData.h
    Classes/DropHere/RecentFileButton.h
    Classes/DropHere/XDropHereDelegate.h
    Classes/DropHere/XDropHereView.h
    Classes/DropHere/XDropHereViewController.h
    Classes/HoverButton/XHoverButton.h
    Classes/SmallViews/XHrefButton.h
    Classes/SmallViews/XMiniProgressIndicator.h
    Classes/SmallViews/XOpaqueView.h
    Classes/TabBar/QXGraphViewTab.h
    Classes/TabBar/QXNewSourceTabBarItem.h
    Classes/TabBar/QXTabBar.h
    Classes/TabBar/QXTabBarDelegate.h
    Classes/TabBar/QXTabBarItem.h
    Classes/TabBar/QXTabBarItemDelegate.h
    Classes/TabBar/TabAccessibility.h
    Classes/TabBar/TabPainting.h
    Platform/Widgets/Animation.h
    Platform/Widgets/Appearance.h
    Platform/Widgets/Binding.h
    Platform/Widgets/DesktopSettings.h
    Platform/Widgets/FlippedGeometry.h
    Platform/Widgets/Pictures.h
    Platform/Widgets/StylePainting.h
    Platform/Widgets/ThemeColors.h
    Platform/Widgets/VelquinStyle.h
  SOURCES
    Classes/CurvesSidebar/CFlippedView.cpp
    Classes/CurvesSidebar/CSmartListView.cpp
    Classes/DropHere/DroppedData.cpp
    Classes/DropHere/RecentFileButton.cpp
    Classes/DropHere/XDropHereView.cpp
    Classes/DropHere/XDropHereViewController.cpp
    Classes/HoverButton/XHoverButton.cpp
    Classes/SmallViews/XHrefButton.cpp
    Classes/SmallViews/XMiniProgressIndicator.cpp
    Classes/SmallViews/XOpaqueView.cpp
    Classes/TabBar/QXNewSourceTabBarItem.cpp
    Classes/TabBar/QXTabBar.cpp
    Classes/TabBar/QXTabBarItem.cpp
    Classes/TabBar/TabAccessibility.cpp
    Classes/TabBar/TabPainting.cpp
    Platform/Widgets/Animation.cpp
    Platform/Widgets/Appearance.cpp
    Platform/Widgets/Binding.cpp
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
