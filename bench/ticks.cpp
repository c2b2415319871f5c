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
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

struct Question {
    XValueRange range;
    int length = 0;
};

struct Answer {
    double microseconds;
    std::size_t marks;
};

// A list of marks and the weekends beside them, from nothing.
Answer ask(const XAxisInfo& kind, const Question& question) {
    const auto axis = kind.makeAxis();
    axis->setPixelLength(question.length);
    axis->setRangeMinMax(question.range.minimum, question.range.maximum);
    const double begin = processorMicroseconds();
    const XAxisTicks ticks = axis->ticks();
    benchmark::DoNotOptimize(axis->colors());
    return {processorMicroseconds() - begin, ticks ? ticks->size() : 0};
}

// Of each kind, the longest list, and the list that took longest. Among so many some wait for other work of
// the machine: the slowest are asked again, in turns, for the least that each takes.
void randomMarks(int rounds) {
    constexpr std::size_t slowestKept = 100;
    constexpr int timesAgain = 20;
    for (const XAxisInfo& kind : XAxisManager::sharedManager().axisTypes()) {
        support::RandomRanges chance;
        std::multimap<double, Question> slowest; // by microseconds
        double sum = 0;
        std::size_t most = 0;
        for (int i = 0; i < rounds; ++i) {
            const XValueRange range = chance.range();
            const Question question{range, chance.length()};
            const Answer answer = ask(kind, question);
            sum += answer.microseconds;
            most = std::max(most, answer.marks);
            slowest.emplace(answer.microseconds, question);
            if (slowest.size() > slowestKept)
                slowest.erase(slowest.begin());
        }
        std::vector<std::pair<double, Question>> again(slowest.begin(), slowest.end());
        for (int i = 0; i < timesAgain; ++i) {
            for (auto& [least, question] : again)
                least = std::min(least, ask(kind, question).microseconds);
        }
        const auto& [least, question] =
            *std::ranges::max_element(again, {}, &decltype(again)::value_type::first);
        std::printf(
            "%-12s %d ranges: %.1f us on the average, %.0f us at most; of the slowest asked again, %.0f us "
            "for %.17g to %.17g in %d pixels; at most %zu marks\n",
            kind.typeId().toLatin1().constData(), rounds, sum / rounds, slowest.rbegin()->first, least,
            question.range.minimum, question.range.maximum, question.length, most);
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
