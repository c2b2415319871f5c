# render: curves to images and vectors, layout and drawing of the plot, pictures of it. No widgets.
set(render_headers
  Classes/PlotView/CurvePixelReader.h
  Classes/PlotView/CurveRenderer.h
  Classes/PlotView/PointSprites.h
  Classes/PlotView/XPlotViewRenderTask.h
)
set(render_sources
  Classes/PlotView/CurvePixelReader.cpp
  Classes/PlotView/CurveRenderer.cpp
  Classes/PlotView/PointSprites.cpp
  Classes/PlotView/XPlotViewRenderTask.cpp
)
if(TARGET velquin_model)
  velquin_library(render
    HEADERS ${render_headers}
    SOURCES ${render_sources}
    USES velquin_model Qt6::Gui Qt6::Svg)
endif()
