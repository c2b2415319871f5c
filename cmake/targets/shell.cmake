# shell: documents, and the widgets that show them.
velquin_library(shell
  HEADERS
    Classes/GraphViewController/DocumentPicture.h
    Classes/PlotView/XPlotView.h
    DocumentWindow.h
    MoxDocument.h
  SOURCES
    Classes/GraphViewController/DocumentPicture.cpp
    Classes/PlotView/XPlotView.cpp
    MoxDocument.cpp
    MoxDocumentFile.cpp
  USES velquin_render Qt6::Widgets)
