# model: curves, data sources, documents' values. The lists are the model's whole contents.
set(model_headers
  Classes/DataSourcesManager/ArrangedObjects.h
  Classes/DataSourcesManager/XDataSourceProtocol.h
  Classes/DataSourcesManager/XDataSourcesManager.h
  Classes/PlotModel/CurveKeys.h
  Classes/PlotModel/DocumentFile.h
  Classes/PlotModel/PlistValues.h
  Classes/PlotModel/XCurve.h
  Classes/PlotView/XGraphPointDescription.h
  Classes/PlotView/XPointsLibrary.h
  Classes/ValueEncodings/ColorEncoding.h
  Classes/ValueEncodings/XVelquin.h
  Classes/PluginsManager/XPluginFactory.h
  Classes/PluginsManager/XPluginsManager.h
  EmbeddedPlugins/TextEditor/XPTextEditor.h
  EmbeddedPlugins/TextFile/InputFile.h
  EmbeddedPlugins/TextFile/XPTextFile.h
  EmbeddedPlugins/TextFile/XPTextFileFactory.h
)
set(model_sources
  Classes/DataSourcesManager/ArrangedObjects.cpp
  Classes/DataSourcesManager/XDataSourcesManager.cpp
  Classes/PluginsManager/XPluginsManager.cpp
  EmbeddedPlugins/TextEditor/XPTextEditor.cpp
  EmbeddedPlugins/TextFile/InputFile.cpp
  EmbeddedPlugins/TextFile/XPTextFile.cpp
  Classes/PlotModel/DocumentFile.cpp
  Classes/PlotModel/PlistValues.cpp
  Classes/PlotModel/XCurve.cpp
  Classes/PlotModel/XCurveEvaluation.cpp
  Classes/PlotModel/XCurvePlist.cpp
  Classes/PlotView/XPointsLibrary.cpp
  Classes/ValueEncodings/ColorEncoding.cpp
  Classes/ValueEncodings/XVelquin.cpp
)
velquin_library(model
  HEADERS ${model_headers}
  SOURCES ${model_sources}
  USES velquin_reading velquin_axes velquin_expression Qt6::Gui)
