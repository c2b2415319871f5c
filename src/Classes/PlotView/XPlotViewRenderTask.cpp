// Grace, snapshot, rendering, hand-over: the life of one render task.
#include "Classes/PlotView/XPlotViewRenderTask.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/CurveRenderer.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

/// Tells the curve how far its rendering is, at most once in 0.1 s and never before the last report has
/// arrived. Outlives the task for as long as a report is under way.
struct XPlotViewRenderTask::ProgressReport : std::enable_shared_from_this<ProgressReport> {
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds interval{100};

    ProgressReport(XCurveHandle renderedCurve, std::uint64_t rowsOfCurve)
        : curve(std::move(renderedCurve)), rows(rowsOfCurve) {}

    /// Worker.
    void rowsDone(std::uint64_t done) {
        currentDataIndex = done;
        const Clock::time_point now = Clock::now();
        if (now - lastReport < interval || isUnderWay.exchange(true))
            return;
        lastReport = now;
        MainThread::perform([self = shared_from_this()] {
            self->isUnderWay = false;
            self->reportProgress();
        });
    }

    /// Main thread.
    void reportProgress() const {
        if (!isExecuting) {
            curve->setBeingRendered(false);
            return;
        }
        curve->setRenderingProgress(static_cast<float>(currentDataIndex) / static_cast<float>(rows));
        curve->setBeingRendered(true);
    }

    const XCurveHandle curve;
    const std::uint64_t rows;
    std::atomic<std::uint64_t> currentDataIndex = 0;
    std::atomic<bool> isExecuting = true; ///< until the image is handed back
    std::atomic<bool> isUnderWay = false;
    Clock::time_point lastReport = Clock::now();
};

XPlotViewRenderTask::XPlotViewRenderTask(XCurveHandle curve, const XAxis& axisX, const XAxis& axisY,
                                         RenderTarget target)
    : m_curve(std::move(curve)), m_axisX(axisX.copy()), m_axisY(axisY.copy()), m_target(std::move(target)) {}

XPlotViewRenderTask::~XPlotViewRenderTask() = default;

bool XPlotViewRenderTask::compareWithTask(const XPlotViewRenderTask& other) const {
    return m_axisX->isEqualToAxis(*other.m_axisX) && m_axisY->isEqualToAxis(*other.m_axisY) &&
           m_target.devicePixelRatio == other.m_target.devicePixelRatio;
}

QString XPlotViewRenderTask::description() const {
    return QString::asprintf("XPlotViewRenderTask %p (%.3g, %.3g) - (%.3g, %.3g) => %dx%d",
                             static_cast<const void*>(m_curve.get()), m_axisX->minValue(),
                             m_axisY->minValue(), m_axisX->maxValue(), m_axisY->maxValue(),
                             m_axisX->pixelLength(), m_axisY->pixelLength());
}

void XPlotViewRenderTask::main() {
    try {
        if (waitForGrace())
            render();
    } catch (const std::exception& error) {
        logMethod("XPlotViewRenderTask::main", QString::fromUtf8(error.what()));
    }
}

/// Returns false when the task was cancelled meanwhile, at once.
bool XPlotViewRenderTask::waitForGrace() const {
    std::mutex mutex;
    std::condition_variable_any cancelled;
    std::unique_lock lock(mutex);
    if (m_target.grace.count() > 0)
        cancelled.wait_for(lock, stopToken(), m_target.grace, [] { return false; });
    return !isCancelled();
}

void XPlotViewRenderTask::render() {
    std::optional<CurveSnapshot> snapshot;
    if (!MainThread::performAndWait([&] { snapshot = m_curve->snapshot(); }) || !snapshot)
        return;
    if (snapshot->rows() == 0)
        return;
    const auto report = std::make_shared<ProgressReport>(m_curve, snapshot->rows());
    QImage image =
        CurveRenderer::renderImage(*snapshot, *m_axisX, *m_axisY, m_target.devicePixelRatio, stopToken(),
                                   [&](std::uint64_t rows) { report->rowsDone(rows); });
    if (image.isNull())
        return;
    // The task stays listed in its queue until this has run.
    MainThread::performAndWait([&] { handBack(std::move(image), snapshot->changeCount, *report); });
}

/// Main thread. A change since the snapshot leaves `needsRedraw` set, and the view that is told to display
/// sees it.
void XPlotViewRenderTask::handBack(QImage image, quint64 changeCount, ProgressReport& report) {
    if (isCancelled())
        return;
    report.isExecuting = false;
    m_hasHandedBack = true;
    m_curve->acceptRendering({std::move(image), m_axisX, m_axisY}, changeCount);
    report.reportProgress();
    if (m_target.setNeedsDisplay)
        m_target.setNeedsDisplay();
}
