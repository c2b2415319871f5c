// What a list of marks costs, for each kind of axis at the spans that people look at; and the slowest of many
// at random: bench_ticks --random ROUNDS
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"

#include "support/RandomRanges.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

namespace {

struct Scale {
    const char* name;
    const char* typeId;
    double min;
    double max;
};

constexpr double start = 1767229384; // on New Year's Day 2026
constexpr double day = 86400;

const Scale scales[] = {
    {"numeric", "numeric", -3.7, 12.4},
    {"log/3decades", "log", 0.5, 900},
    {"log/400decades", "log", 1e-200, 1e200},
    {"pseudolog", "pseudolog", -5000, 80000},
    {"pseudolog/deepInTheBand", "pseudolog", 4, 4.000001},
    {"timeline/100years", "timeline", start, start + 36500 * day},
    {"timeline/10years", "timeline", start, start + 3650 * day},
    {"timeline/1year", "timeline", start, start + 365 * day},
    {"timeline/1month", "timeline", start, start + 30 * day},
    {"timeline/1week", "timeline", start, start + 7 * day},
    {"timeline/1day", "timeline", start, start + day},
    {"timeline/1hour", "timeline", start, start + 3600},
    {"timeline/1minute", "timeline", start, start + 60},
    {"timeline/1second", "timeline", start, start + 1},
};

// The marks of a scale, and the weekends beside them, at the width of a plot on a large screen.
void marks(benchmark::State& state, const Scale& scale) {
    const auto axis = XAxisManager::sharedManager().createAxisWithTypeId(QString::fromLatin1(scale.typeId));
    axis->setRangeMinMax(scale.min, scale.max);
    axis->setPixelLength(2500);
    std::size_t count = 0;
    for (auto _ : state) {
        axis->resetCachedValues();
        const XAxisTicks ticks = axis->ticks();
        benchmark::DoNotOptimize(axis->colors());
        count = ticks->size();
    }
    state.counters["marks"] = static_cast<double>(count);
}

double processorMicroseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) * 1e-3;
}

// Of each kind, the list that took longest and the longest list.
void randomMarks(int rounds) {
    for (const XAxisInfo& kind : XAxisManager::sharedManager().axisTypes()) {
        support::RandomRanges chance;
        double slowest = 0;
        double sum = 0;
        std::size_t most = 0;
        XValueRange rangeOfSlowest;
        for (int i = 0; i < rounds; ++i) {
            const XValueRange range = chance.range();
            const auto axis = kind.makeAxis();
            axis->setPixelLength(chance.length());
            axis->setRangeMinMax(range.minimum, range.maximum);
            const double begin = processorMicroseconds();
            const XAxisTicks ticks = axis->ticks();
            benchmark::DoNotOptimize(axis->colors());
            const double took = processorMicroseconds() - begin;
            sum += took;
            most = std::max(most, ticks ? ticks->size() : 0);
            if (took > slowest) {
                slowest = took;
                rangeOfSlowest = range;
            }
        }
        std::printf("%-12s %d ranges: %.1f us on the average, %.0f us at %.17g to %.17g; at most %zu marks\n",
                    kind.typeId().toLatin1().constData(), rounds, sum / rounds, slowest,
                    rangeOfSlowest.minimum, rangeOfSlowest.maximum, most);
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "--random") {
        randomMarks(std::atoi(argv[2]));
        return 0;
    }
    for (const Scale& scale : scales)
        benchmark::RegisterBenchmark(scale.name, marks, scale)->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
