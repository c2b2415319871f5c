// How long drawing takes: the reduction alone, and whole curves from columns of doubles to pixels.
#include "PlainDrawing.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/CurveRenderer.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Core/PolylineCompressor.h"
#include "Platform/Core/FreedMemory.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int width = 920;
constexpr int height = 550;
constexpr std::uint64_t million = 1000000;

struct Signal {
    XTable table; ///< columns x and y; x from 0 to 1 in order
    double low = 0;
    double high = 0;
};

/// Made once for each kind and length. Kinds: "noise", "walk", "sine", "gaps", "unsorted".
const Signal& signal(const std::string& kind, std::uint64_t rows) {
    static std::map<std::pair<std::string, std::uint64_t>, Signal> signals;
    Signal& made = signals[{kind, rows}];
    if (made.table)
        return made;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> uniform(0, 1);
    std::normal_distribution<double> normal;
    auto table = std::make_shared<XPTableData>();
    made = {nullptr, 0, 1};
    double level = 0;
    for (std::uint64_t row = 0; row < rows; ++row) {
        const double t = static_cast<double>(row) / static_cast<double>(rows);
        double x = t;
        double y = uniform(random);
        if (kind == "walk")
            y = level += normal(random);
        else if (kind == "sine")
            y = 0.5 + 0.45 * std::sin(125 * t);
        else if (kind == "gaps" && row % 3 == 2)
            y = std::numeric_limits<double>::quiet_NaN();
        else if (kind == "unsorted")
            x = uniform(random);
        made.low = std::fmin(made.low, y);
        made.high = std::fmax(made.high, y);
        table->writeValueAtColRow(y, 1, row);
        table->writeValueAtColRow(x, 0, row);
    }
    made.table = table;
    return made;
}

std::unique_ptr<XAxis> axis(int length, double min, double max) {
    auto made = std::make_unique<XAxis>();
    made->setRangeMinMax(min, max);
    made->setPixelLength(length);
    return made;
}

void renderRepeatedly(benchmark::State& state, const Signal& data, const CurveSnapshot& curve) {
    const auto x = axis(width, 0, 1);
    const auto y = axis(height, data.low, data.high);
    for (auto _ : state)
        benchmark::DoNotOptimize(CurveRenderer::renderImage(curve, *x, *y, 1, {}));
    state.SetItemsProcessed(static_cast<std::int64_t>(curve.rows()) * state.iterations());
}

CurveSnapshot curveOf(const Signal& data) {
    CurveSnapshot curve;
    curve.table = data.table;
    curve.xIndex = 1;
    curve.yIndex = 2;
    curve.color = {0.8, 0.1, 0.2, 1};
    return curve;
}

void line(benchmark::State& state, const std::string& kind, std::uint64_t rows, int lineWidth, float alpha) {
    const Signal& data = signal(kind, rows);
    CurveSnapshot curve = curveOf(data);
    curve.lineWidth = lineWidth;
    curve.colorAlpha = alpha;
    renderRepeatedly(state, data, curve);
}

/// One curve as a plain program draws it.
void plainLine(benchmark::State& state, const std::string& kind, std::uint64_t rows) {
    const Signal& data = signal(kind, rows);
    for (auto _ : state)
        benchmark::DoNotOptimize(plain::picture(data.table->column(0), {data.table->column(1)}));
    state.SetItemsProcessed(static_cast<std::int64_t>(rows) * state.iterations());
}

void shapes(benchmark::State& state, int identifier, int size, float alpha) {
    const Signal& data = signal("unsorted", 50000);
    CurveSnapshot curve = curveOf(data);
    curve.lineWidth = 0;
    curve.ticksShape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(identifier);
    curve.ticksSize = size;
    curve.colorAlpha = alpha;
    renderRepeatedly(state, data, curve);
}

/// From pixels that are there already to the points that are kept.
void reduction(benchmark::State& state, const std::string& kind) {
    const Signal& data = signal(kind, million);
    std::vector<float> x(million), y(million);
    axis(width, 0, 1)->valuesToPixelsFromToCount(data.table->column(0).data(), x.data(), million);
    axis(height, data.low, data.high)
        ->valuesToPixelsFromToCount(data.table->column(1).data(), y.data(), million);
    std::size_t kept = 0;
    for (auto _ : state) {
        std::size_t at = 0;
        kept = 0;
        PolylineCompressor compressor(
            [&](const float*& px, const float*& py) {
                const std::size_t count = std::min<std::size_t>(4096, million - at);
                px = x.data() + at;
                py = y.data() + at;
                at += count;
                return count;
            },
            [&](std::span<const PlotPoint> points, bool) {
                kept += points.size();
                return false;
            });
        compressor.setExtent(width, height);
        compressor.run();
    }
    state.counters["points kept"] = static_cast<double>(kept);
    state.SetItemsProcessed(static_cast<std::int64_t>(million) * state.iterations());
}

void add(const std::string& name, const std::function<void(benchmark::State&)>& run) {
    // A long line in no order is drawn by two threads: the clock on the wall, and the processor time of both.
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

void addAll() {
    const auto text = [](double value) {
        return value == 1 ? std::string("1") : std::to_string(value).substr(0, 3);
    };
    for (const char* kind : {"noise", "walk", "sine"}) {
        add(std::string("reduce 1M/") + kind, [=](auto& state) { reduction(state, kind); });
        for (const int lineWidth : {1, 2, 4}) {
            for (const float alpha : {1.0F, 0.5F})
                add(std::string("line 1M/") + kind + "/width " + std::to_string(lineWidth) + "/alpha " +
                        text(alpha),
                    [=](auto& state) { line(state, kind, million, lineWidth, alpha); });
        }
    }
    for (const char* kind : {"noise", "walk", "sine"}) {
        for (const std::uint64_t rows : {million, 10 * million}) {
            const std::string name = std::to_string(rows / million) + "M/" + kind + "/width 1";
            add("plain " + name, [=](auto& state) { plainLine(state, kind, rows); });
            add("beside line " + name, [=](auto& state) { line(state, kind, rows, 1, 1); });
        }
    }
    for (const float alpha : {1.0F, 0.5F}) {
        add("line 1M/a gap at every third row/width 1/alpha " + text(alpha),
            [=](auto& state) { line(state, "gaps", million, 1, alpha); });
        add("line 20k/in any order/width 2/alpha " + text(alpha),
            [=](auto& state) { line(state, "unsorted", 20000, 2, alpha); });
        add("line 1M/in any order/width 1/alpha " + text(alpha),
            [=](auto& state) { line(state, "unsorted", million, 1, alpha); });
        add("50k circles/size 4/alpha " + text(alpha), [=](auto& state) { shapes(state, 1, 4, alpha); });
        add("50k rings/size 8/alpha " + text(alpha), [=](auto& state) { shapes(state, 6, 8, alpha); });
    }
}

} // namespace

int main(int argc, char** argv) {
    FreedMemory::goesBackToTheSystem(); // as the program has it
    benchmark::Initialize(&argc, argv);
    addAll();
    benchmark::RunSpecifiedBenchmarks();
}
