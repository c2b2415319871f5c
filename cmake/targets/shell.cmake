# shell: documents, and the widgets that show them.
velquin_library(shell
  HEADERS
    Classes/GraphViewController/DocumentPicture.h
    Classes/GraphViewController/PlotPage.h
    Classes/GraphViewController/XGraphViewController.h
    Classes/PlotView/QuickHelpCard.h
    Classes/PlotView/XPlotView.h
    Classes/WindowControllers/DataSourceTab.h
    Classes/WindowControllers/DocumentController.h
    Classes/WindowControllers/EditCommands.h
    Classes/WindowControllers/MenuTable.h
    Classes/WindowControllers/MoxDocumentWindow.h
    Classes/WindowControllers/StatusLine.h
    Classes/WindowControllers/TabRow.h
    Classes/WindowControllers/WindowDrops.h
    Classes/WindowControllers/WindowMenus.h
    DocumentWindow.h
    MoxDocument.h
  SOURCES
    Classes/GraphViewController/DocumentPicture.cpp
    Classes/GraphViewController/PlotPage.cpp
    Classes/GraphViewController/XGraphViewController.cpp
    Classes/PlotView/QuickHelpCard.cpp
    Classes/PlotView/XPlotView.cpp
    Classes/WindowControllers/DataSourceTab.cpp
    Classes/WindowControllers/DocumentController.cpp
    Classes/WindowControllers/EditCommands.cpp
    Classes/WindowControllers/MenuTable.cpp
    Classes/WindowControllers/MoxDocumentWindow.cpp
    Classes/WindowControllers/MoxDocumentWindowClosing.cpp
    Classes/WindowControllers/StatusLine.cpp
    Classes/WindowControllers/TabRow.cpp
    Classes/WindowControllers/WindowDrops.cpp
    Classes/WindowControllers/WindowMenus.cpp
    MoxDocument.cpp
    MoxDocumentFile.cpp
  USES velquin_render velquin_widgetkit Qt6::Widgets)
# The window's interface file lies with the document.
set_target_properties(velquin_shell PROPERTIES AUTOUIC ON AUTOUIC_SEARCH_PATHS ${CMAKE_SOURCE_DIR}/src)
