# render: curves to images and vectors, layout and drawing of the plot, pictures of it. No widgets.
find_package(PNG REQUIRED)

set(render_headers
  Classes/GraphViewController/ImageExport.h
  Classes/PlotView/CurvePixelReader.h
  Classes/PlotView/CurveRenderer.h
  Classes/PlotView/CurveStrokes.h
  Classes/PlotView/FitToData.h
  Classes/PlotView/LegendDrawing.h
  Classes/PlotView/MouseTicks.h
  Classes/PlotView/PainterCanvas.h
  Classes/PlotView/PlotCanvas.h
  Classes/PlotView/PlotDrawing.h
  Classes/PlotView/PlotInteraction.h
  Classes/PlotView/PlotLayout.h
  Classes/PlotView/PlotOverlay.h
  Classes/PlotView/PlotPage.h
  Classes/PlotView/PlotPicture.h
  Classes/PlotView/PlotScene.h
  Classes/PlotView/PlotStyles.h
  Classes/PlotView/PlotText.h
  Classes/PlotView/PngWriter.h
  Classes/PlotView/PointSprites.h
  Classes/PlotView/RecordedCanvas.h
  Classes/PlotView/RecordedPicture.h
  Classes/PlotView/RulerDrawing.h
  Classes/PlotView/SelectionDrawing.h
  Classes/PlotView/TitleLayout.h
  Classes/PlotView/XPlotViewRenderTask.h
)
set(render_sources
  Classes/GraphViewController/ImageExport.cpp
  Classes/PlotView/CurvePixelReader.cpp
  Classes/PlotView/CurveRenderer.cpp
  Classes/PlotView/CurveStrokes.cpp
  Classes/PlotView/FitToData.cpp
  Classes/PlotView/LegendDrawing.cpp
  Classes/PlotView/MouseTicks.cpp
  Classes/PlotView/PainterCanvas.cpp
  Classes/PlotView/PlotDrawing.cpp
  Classes/PlotView/PlotInteraction.cpp
  Classes/PlotView/PlotLayout.cpp
  Classes/PlotView/PlotPage.cpp
  Classes/PlotView/PlotPicture.cpp
  Classes/PlotView/PlotScene.cpp
  Classes/PlotView/PlotStyles.cpp
  Classes/PlotView/PlotText.cpp
  Classes/PlotView/PngWriter.cpp
  Classes/PlotView/PointSprites.cpp
  Classes/PlotView/RecordedCanvas.cpp
  Classes/PlotView/RecordedPicture.cpp
  Classes/PlotView/RulerDrawing.cpp
  Classes/PlotView/SelectionDrawing.cpp
  Classes/PlotView/TitleLayout.cpp
  Classes/PlotView/XPlotViewRenderTask.cpp
)
velquin_library(render
  HEADERS ${render_headers}
  SOURCES ${render_sources}
  USES velquin_model Qt6::Gui Qt6::Svg
  PRIVATE_USES PNG::PNG)
