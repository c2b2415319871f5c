# shell: documents, and the widgets that show them.
if(TARGET velquin_render)
velquin_library(shell
  HEADERS
    DocumentWindow.h
    MoxDocument.h
  SOURCES
    MoxDocument.cpp
    MoxDocumentFile.cpp
  USES velquin_render Qt6::Widgets)
endif()
