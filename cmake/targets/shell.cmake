# shell: documents, and the widgets that show them.
velquin_library(shell
  HEADERS
    Classes/GraphViewController/DocumentPicture.h
    DocumentWindow.h
    MoxDocument.h
  SOURCES
    Classes/GraphViewController/DocumentPicture.cpp
    MoxDocument.cpp
    MoxDocumentFile.cpp
  USES velquin_render Qt6::Widgets)
