# axes: values to pixels, ticks and texts. Labels are plain values.
velquin_library(axes
  HEADERS
    Classes/Axes/LinearTicks.h
    Classes/Axes/LogTicks.h
    Classes/Axes/XAxis.h
    Classes/Axes/XAxisInfo.h
    Classes/Axes/XAxisManager.h
    Classes/Axes/XAxisTick.h
    Classes/Axes/XEmptyAxis.h
    Classes/Axes/XLogAxis.h
    Classes/Axes/XPseudoLogAxis.h
  SOURCES
    Classes/Axes/LinearTicks.cpp
    Classes/Axes/LogTicks.cpp
    Classes/Axes/XAxis.cpp
    Classes/Axes/XAxisInfo.cpp
    Classes/Axes/XAxisManager.cpp
    Classes/Axes/XAxisTick.cpp
    Classes/Axes/XEmptyAxis.cpp
    Classes/Axes/XLogAxis.cpp
    Classes/Axes/XPseudoLogAxis.cpp
  USES velquin_platform)
