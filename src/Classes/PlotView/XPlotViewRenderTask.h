// Background rendering of one curve, for one pair of axis states, into an image of the plot area's size.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "Platform/Core/OperationQueue.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

class XAxis;

/// Where a finished rendering is announced, and how it is made.
struct RenderTarget {
    std::function<void()> setNeedsDisplay; ///< called on the main thread; may be empty
    double devicePixelRatio = 1;           ///< device pixels per point
    std::chrono::milliseconds grace{100};  ///< a task cancelled within this time never starts work
};

/// Takes copies of the axes when it is made (main thread); `main` runs on a queue's thread, once. A cancelled
/// task hands nothing back. Kept: it does not report its end either, so the curve may stay `beingRendered`
/// until another task of it ends.
class XPlotViewRenderTask : public Operation {
  public:
    XPlotViewRenderTask(XCurveHandle curve, const XAxis& axisX, const XAxis& axisY, RenderTarget target);
    ~XPlotViewRenderTask() override;

    void main() override;
    /// Whether both tasks render for equal axes (and the same device pixel ratio).
    bool compareWithTask(const XPlotViewRenderTask& other) const;
    const XCurveHandle& curve() const { return m_curve; }
    QString description() const;
    /// Whether the task has given its image to the curve: it serves no later change, though it may still be
    /// listed in its queue for a moment. Any thread.
    bool hasHandedBack() const { return m_hasHandedBack; }

  private:
    struct ProgressReport;

    bool waitForGrace() const;
    void render();
    void handBack(QImage image, quint64 changeCount, ProgressReport& report);

    XCurveHandle m_curve;
    XAxisHandle m_axisX;
    XAxisHandle m_axisY;
    RenderTarget m_target;
    std::atomic<bool> m_hasHandedBack = false;
};
