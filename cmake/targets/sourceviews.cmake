# sourceviews: the settings views of the data sources, which the program hands to the model.
velquin_library(sourceviews
  HEADERS
    EmbeddedPlugins/Common/NoticeBar.h
    EmbeddedPlugins/Common/PreviewTableView.h
    EmbeddedPlugins/Common/SourceNotices.h
    EmbeddedPlugins/Common/SourcePage.h
    EmbeddedPlugins/Common/SourceSurvey.h
    EmbeddedPlugins/SourceViews.h
    EmbeddedPlugins/TextEditor/LongTextEdit.h
    EmbeddedPlugins/TextEditor/XPTextEditorConfig.h
    EmbeddedPlugins/TextFile/PreviewTableModel.h
    EmbeddedPlugins/TextFile/XPTextFileConfig.h
  SOURCES
    EmbeddedPlugins/Common/NoticeBar.cpp
    EmbeddedPlugins/Common/PreviewTableDrawing.cpp
    EmbeddedPlugins/Common/PreviewTableView.cpp
    EmbeddedPlugins/Common/SourceNotices.cpp
    EmbeddedPlugins/Common/SourcePage.cpp
    EmbeddedPlugins/Common/SourceSurvey.cpp
    EmbeddedPlugins/SourceViews.cpp
    EmbeddedPlugins/TextEditor/LongTextEdit.cpp
    EmbeddedPlugins/TextEditor/XPTextEditorConfig.cpp
    EmbeddedPlugins/TextFile/PreviewTableModel.cpp
    EmbeddedPlugins/TextFile/XPTextFileConfig.cpp
  USES velquin_model velquin_widgetkit)
set_target_properties(velquin_sourceviews PROPERTIES AUTOUIC ON)
