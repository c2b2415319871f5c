// The life of a render task: grace, one consistent snapshot, progress, cancellation and the hand-over.
#include "Classes/PlotView/XPlotViewRenderTask.h"

#include "Classes/Axes/XAxis.h"
#include "Platform/Core/MainThread.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <vector>

namespace {

using namespace std::chrono_literals;

/// An axis whose copies call `hook` on the worker, once, when the first chunk is converted.
class HookedAxis : public XAxis {
  public:
    explicit HookedAxis(std::function<void()> hook = {})
        : m_hook(std::make_shared<std::function<void()>>(std::move(hook))) {
        setRangeMinMax(0, 100);
        setPixelLength(100);
    }
    std::unique_ptr<XAxis> copy() const override { return std::unique_ptr<XAxis>(new HookedAxis(*this)); }
    int valuesToPixelsFromToCount(const double* from, float* to, std::size_t count) const override {
        if (*m_hook)
            std::exchange(*m_hook, {})();
        return XAxis::valuesToPixelsFromToCount(from, to, count);
    }

  private:
    HookedAxis(const HookedAxis&) = default;
    std::shared_ptr<std::function<void()>> m_hook;
};

constexpr const char* observedKeys[] = {"beingRendered", "renderingProgress"};

class RenderTask : public testing::Test {
  protected:
    RenderTask() {
        std::vector<double> column(10000);
        std::iota(column.begin(), column.end(), 0);
        source = std::make_shared<support::TableSource>(support::makeTable({column, column}));
        curve->setDataSource(source);
        curve->setX_data_index(1);
        curve->setY_data_index(2);
        curve->setNeedsRedraw(true);
        observation = Observation(*curve, observedKeys, [this](const KeyChange& change) {
            EXPECT_TRUE(MainThread::isCurrent());
            changes.push_back(std::string(change.key) + "=" + change.newValue.toString().toStdString());
        });
    }

    std::shared_ptr<XPlotViewRenderTask> task(std::function<void()> hook = {},
                                              std::chrono::milliseconds grace = 0ms) {
        RenderTarget target;
        target.grace = grace;
        target.setNeedsDisplay = [this] {
            EXPECT_TRUE(MainThread::isCurrent());
            EXPECT_EQ(queue.operationCount(), 1U) << "listed until it has handed over";
            ++displays;
        };
        return std::make_shared<XPlotViewRenderTask>(curve, HookedAxis(std::move(hook)), HookedAxis(),
                                                     target);
    }

    void run(const std::shared_ptr<XPlotViewRenderTask>& operation) {
        queue.add(operation);
        ASSERT_TRUE(support::waitUntil([this] { return queue.isIdle(); }));
    }

    XCurveHandle curve = XCurve::make();
    std::shared_ptr<support::TableSource> source;
    OperationQueue queue{4};
    Observation observation;
    std::vector<std::string> changes;
    int displays = 0;
};

TEST_F(RenderTask, HandsTheImageBackAndAsksForDisplay) {
    const auto done = task();
    EXPECT_FALSE(done->hasHandedBack());
    run(done);
    EXPECT_EQ(curve->renderedImage().size(), QSize(100, 100));
    EXPECT_FALSE(curve->needsRedraw());
    ASSERT_NE(curve->rendering().axisX, nullptr);
    EXPECT_TRUE(curve->rendering().axisX->isEqualToAxis(HookedAxis()));
    EXPECT_EQ(displays, 1);
    EXPECT_EQ(changes, std::vector<std::string>{"beingRendered=false"});
    EXPECT_TRUE(done->hasHandedBack());
}

TEST_F(RenderTask, AChangeWhileItRendersLeavesTheRedrawDue) {
    run(task([this] { MainThread::performAndWait([this] { curve->setLineWidth(3); }); }));
    EXPECT_FALSE(curve->renderedImage().isNull()) << "better an old image than none";
    EXPECT_TRUE(curve->needsRedraw());
    EXPECT_EQ(displays, 1) << "the view is asked again";
}

TEST_F(RenderTask, KeepsTheTableOfItsSnapshot) {
    run(task([this] { MainThread::performAndWait([this] { source->setData(nullptr); }); }));
    EXPECT_EQ(curve->renderedImage().size(), QSize(100, 100));
}

TEST_F(RenderTask, ReportsProgressWhileItIsSlow) {
    // The hook holds the worker until a report is due; only the clock can tell.
    run(task([] {
        const auto due = std::chrono::steady_clock::now() + 101ms;
        while (std::chrono::steady_clock::now() < due) {
        }
    }));
    ASSERT_GE(changes.size(), 3U);
    EXPECT_EQ(changes[0].substr(0, 18), "renderingProgress=");
    EXPECT_EQ(changes[1], "beingRendered=true");
    EXPECT_EQ(changes.back(), "beingRendered=false");
}

TEST_F(RenderTask, CancelledItHandsNothingBack) {
    struct Row {
        const char* name;
        std::function<void(XPlotViewRenderTask&)> cancelBefore;
        bool cancelInside;
        std::chrono::milliseconds grace;
    };
    const Row rows[] = {
        {"before it starts", [](auto& operation) { operation.cancel(); }, false, 0ms},
        {"in its grace, at once", [](auto& operation) { operation.cancel(); }, false, 24h},
        {"kept: while it renders, and beingRendered stays", {}, true, 0ms},
    };
    for (const Row& row : rows) {
        std::weak_ptr<XPlotViewRenderTask> self;
        const auto cancelled = task([&] { self.lock()->cancel(); }, row.grace);
        self = cancelled;
        curve->setBeingRendered(true);
        changes.clear();
        queue.add(cancelled);
        if (row.cancelBefore)
            row.cancelBefore(*cancelled);
        ASSERT_TRUE(support::waitUntil([this] { return queue.isIdle(); })) << row.name;
        EXPECT_TRUE(curve->renderedImage().isNull()) << row.name;
        EXPECT_TRUE(curve->needsRedraw()) << row.name;
        EXPECT_TRUE(curve->beingRendered()) << row.name;
        EXPECT_TRUE(changes.empty()) << row.name;
        EXPECT_EQ(displays, 0) << row.name;
    }
}

TEST_F(RenderTask, LeavesACurveWithoutRowsUntouched) {
    curve->setDataSource(nullptr);
    run(task());
    EXPECT_TRUE(curve->renderedImage().isNull());
    EXPECT_TRUE(curve->needsRedraw());
    EXPECT_EQ(displays, 0);
}

TEST_F(RenderTask, LetsNoExceptionOut) {
    run(task([] { throw std::runtime_error("a broken axis"); }));
    EXPECT_TRUE(curve->renderedImage().isNull());
    EXPECT_EQ(displays, 0);
}

TEST_F(RenderTask, ComparesAndDescribesItsAxes) {
    HookedAxis x, y;
    y.setRangeMinMax(-1.23456, 1e9);
    const XPlotViewRenderTask first(curve, x, y, {});
    source->setData(support::makeTable({{1}}));
    EXPECT_TRUE(first.compareWithTask({curve, x, y, {}})) << "kept: equal even if the data changed";
    EXPECT_FALSE(first.compareWithTask({curve, y, y, {}}));
    EXPECT_FALSE(first.compareWithTask({curve, x, x, {}}));
    EXPECT_FALSE(first.compareWithTask({curve, x, y, {{}, 2}})) << "another device pixel ratio";
    EXPECT_EQ(first.description(),
              QString::asprintf("XPlotViewRenderTask %p (0, -1.23) - (100, 1e+09) => 100x100",
                                static_cast<const void*>(curve.get())));
    y.setPixelLength(50);
    EXPECT_FALSE(first.compareWithTask({curve, x, y, {}}));
}

} // namespace
