# shell: documents, and the widgets that show them.
velquin_library(shell
  HEADERS
    Classes/GraphViewController/DocumentPicture.h
    Classes/GraphViewController/PlotPage.h
    Classes/GraphViewController/XGraphViewController.h
    Classes/PlotView/XPlotView.h
    Classes/WindowControllers/PlotWindow.h
    DocumentWindow.h
    MoxDocument.h
  SOURCES
    Classes/GraphViewController/DocumentPicture.cpp
    Classes/GraphViewController/PlotPage.cpp
    Classes/GraphViewController/XGraphViewController.cpp
    Classes/PlotView/XPlotView.cpp
    Classes/WindowControllers/PlotWindow.cpp
    MoxDocument.cpp
    MoxDocumentFile.cpp
  USES velquin_render Qt6::Widgets)
