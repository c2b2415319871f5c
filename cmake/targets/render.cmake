# render: curves to images and vectors, layout and drawing of the plot, pictures of it. No widgets.
set(render_headers
  Classes/GraphViewController/ImageExport.h
  Classes/PlotView/CurvePixelReader.h
  Classes/PlotView/CurveRenderer.h
  Classes/PlotView/FitToData.h
  Classes/PlotView/LegendDrawing.h
  Classes/PlotView/PainterCanvas.h
  Classes/PlotView/PlotCanvas.h
  Classes/PlotView/PlotDrawing.h
  Classes/PlotView/PlotLayout.h
  Classes/PlotView/PlotPicture.h
  Classes/PlotView/PlotScene.h
  Classes/PlotView/PlotStyles.h
  Classes/PlotView/PlotText.h
  Classes/PlotView/PointSprites.h
  Classes/PlotView/TitleLayout.h
  Classes/PlotView/XPlotViewRenderTask.h
)
set(render_sources
  Classes/GraphViewController/ImageExport.cpp
  Classes/PlotView/CurvePixelReader.cpp
  Classes/PlotView/CurveRenderer.cpp
  Classes/PlotView/FitToData.cpp
  Classes/PlotView/LegendDrawing.cpp
  Classes/PlotView/PainterCanvas.cpp
  Classes/PlotView/PlotDrawing.cpp
  Classes/PlotView/PlotLayout.cpp
  Classes/PlotView/PlotPicture.cpp
  Classes/PlotView/PlotScene.cpp
  Classes/PlotView/PlotStyles.cpp
  Classes/PlotView/PlotText.cpp
  Classes/PlotView/PointSprites.cpp
  Classes/PlotView/TitleLayout.cpp
  Classes/PlotView/XPlotViewRenderTask.cpp
)
velquin_library(render
  HEADERS ${render_headers}
  SOURCES ${render_sources}
  USES velquin_model Qt6::Gui Qt6::Svg)
