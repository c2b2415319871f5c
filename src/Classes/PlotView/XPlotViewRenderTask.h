// Background rendering of one curve, for one pair of axis states, into an image of the plot area's size.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "Platform/Core/OperationQueue.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>

class XAxis;

/// Where a finished rendering is announced, and how it is made.
struct RenderTarget {
    std::function<void()> setNeedsDisplay; ///< called on the main thread; may be empty
    double devicePixelRatio = 1;           ///< device pixels per point
    std::chrono::milliseconds grace{100};  ///< a task cancelled within this time never starts work
};

/// Takes copies of the axes when it is made (main thread); `main` runs on a queue's thread.
class XPlotViewRenderTask : public Operation {
  public:
    XPlotViewRenderTask(XCurveHandle curve, const XAxis& axisX, const XAxis& axisY, RenderTarget target);
    ~XPlotViewRenderTask() override;

    void main() override;
    /// Whether both tasks render for equal axes (and the same device pixel ratio).
    bool compareWithTask(const XPlotViewRenderTask& other) const;
    const XCurveHandle& curve() const;
    QString description() const;
};
