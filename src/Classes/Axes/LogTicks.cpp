// Walks over the decades of a range, fewer where they are narrow.
#include "Classes/Axes/LogTicks.h"

#include "Classes/Axes/LinearTicks.h"
#include "Core/ClampToInt.h"
#include "Core/DecimalLogarithm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

using Marks = std::vector<XAxisTick>;
using Label = AttributedLabel (*)(int);

// Powers of ten beyond these are no double.
constexpr int lowestDecade = -330;
constexpr int highestDecade = 310;
constexpr double sparsePixels = 50;

double powerOfTen(double exponent) {
    return std::pow(10, exponent);
}

double toPseudoLog(double value) {
    const double magnitude = std::abs(value);
    return magnitude >= 10 ? std::copysign(decimalLogarithm(magnitude), value) : value / 10;
}

void toPseudoLogs(std::span<const double> values, std::span<double> logs) {
    std::array<double, LogTransform::mostAtOnce> space;
    const std::span<double> magnitudes = std::span(space).first(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        magnitudes[i] = std::max(1.0, std::abs(values[i])); // of no use below 10, and usual even for NaN
    decimalLogarithms(magnitudes, logs);
    for (std::size_t i = 0; i < values.size(); ++i)
        logs[i] = magnitudes[i] >= 10 ? std::copysign(logs[i], values[i]) : values[i] / 10;
}

double fromPseudoLog(double log) {
    if (log > 1)
        return powerOfTen(log);
    return log < -1 ? -powerOfTen(-log) : 10 * log;
}

bool hasMarks(const LogSpan& span) {
    return std::isfinite(span.minLog) && std::isfinite(span.maxLog) && span.minLog < span.maxLog &&
           std::isfinite(span.pixelsPerLog) && span.pixelsPerLog > 0;
}

// The width of the decade from 10 to 100, which both transforms have at 1 to 2.
double pixelsPerDecade(const LogSpan& span) {
    return (2 - span.minLog) * span.pixelsPerLog - (1 - span.minLog) * span.pixelsPerLog;
}

XAxisTick decadeMark(double value, AttributedLabel label) {
    return {value, {}, std::move(label), 0, 0};
}

// Kept: the minor marks are nine equal steps across the decade, at 1.9, 2.8, ... 9.1 times its start.
void addDecadeWithMinors(Marks& marks, double value, AttributedLabel label) {
    marks.push_back(decadeMark(value, std::move(label)));
    for (int j = 1; j <= 9; ++j)
        marks.push_back({value + j * (0.9 * value), {}, {}, 1, 0});
}

// Every `step` decades from `first` to the end of the span.
void addDenseDecades(Marks& marks, double first, double step, double maxLog, const LogTransform& transform,
                     Label label) {
    if (!std::isfinite(step) || !(step >= 1))
        return;
    for (double e = first; std::trunc(e) <= maxLog; e = std::trunc(e) + step)
        marks.push_back(decadeMark(transform.fromLog(std::trunc(e)), label(clampToInt(e))));
}

// The marks of a linear axis from -10 to 10 that are in or next to the span. Kept: zero itself has none.
void addLinearBand(Marks& marks, const LogSpan& span) {
    const double pixels =
        std::trunc((1 - span.minLog) * span.pixelsPerLog - (-1 - span.minLog) * span.pixelsPerLog);
    const double spanOf150Pixels = 150 * (20 / pixels);
    const double low = std::max(-10.0, fromPseudoLog(span.minLog) - spanOf150Pixels);
    const double high = std::min(10.0, fromPseudoLog(span.maxLog) + spanOf150Pixels);
    const LinearTicks linear = makeLinearTicks(low, high, spanOf150Pixels, TickAnchor::Zero);
    if (!linear.ticks)
        return;
    // A mark that only rounding keeps off 0 or 10 stands there.
    const double tolerance = linear.tickStep * 1e-6;
    for (const XAxisTick& tick : *linear.ticks) {
        const double distance = std::abs(tick.value);
        if (distance > tolerance && distance < 10 - tolerance)
            marks.push_back(tick);
    }
}

// Ascending, without what has no finite place, each place once.
XAxisTicks inOrder(Marks marks, const LogTransform& transform) {
    std::erase_if(marks, [&](const XAxisTick& tick) {
        return !std::isfinite(tick.value) || !std::isfinite(transform.toLog(tick.value));
    });
    std::stable_sort(marks.begin(), marks.end(),
                     [](const XAxisTick& a, const XAxisTick& b) { return a.compare(b) < 0; });
    const auto samePlace = [](const XAxisTick& a, const XAxisTick& b) { return a.compare(b) == 0; };
    marks.erase(std::unique(marks.begin(), marks.end(), samePlace), marks.end());
    return std::make_shared<const Marks>(std::move(marks));
}

} // namespace

const LogTransform logTransform{decimalLogarithm, powerOfTen, decimalLogarithms};
const LogTransform pseudoLogTransform{toPseudoLog, fromPseudoLog, toPseudoLogs};

AttributedLabel logDecadeLabel(int k) {
    return {QStringLiteral("10%1").arg(k), 2};
}

AttributedLabel pseudoLogDecadeLabel(int k) {
    return {(k < 0 ? QStringLiteral("-10%1") : QStringLiteral("+10%1")).arg(std::abs(k)), 3};
}

XAxisTicks makeLogTicks(const LogSpan& span) {
    if (!hasMarks(span))
        return nullptr;
    Marks marks;
    if (pixelsPerDecade(span) > sparsePixels) {
        const int first = std::max(clampToInt(span.minLog) - 2, lowestDecade);
        for (int k = first; k <= std::min<double>(span.maxLog, highestDecade); ++k)
            addDecadeWithMinors(marks, powerOfTen(k), logDecadeLabel(k));
    } else {
        const double step = powerOfTenBelow(150 / span.pixelsPerLog);
        const double first = std::floor(span.minLog / step) * step;
        addDenseDecades(marks, first, step, span.maxLog, logTransform, logDecadeLabel);
    }
    return inOrder(std::move(marks), logTransform);
}

XAxisTicks makePseudoLogTicks(const LogSpan& span) {
    if (!hasMarks(span))
        return nullptr;
    Marks marks;
    if (pixelsPerDecade(span) > sparsePixels) {
        const int first = std::max(clampToInt(span.minLog - 1), -highestDecade);
        for (int k = first; k < std::min<double>(span.maxLog + 1, highestDecade); ++k) {
            if (k == 0)
                addLinearBand(marks, span);
            else
                addDecadeWithMinors(marks, fromPseudoLog(k), pseudoLogDecadeLabel(k));
        }
    } else {
        double step = powerOfTenBelow(120 / span.pixelsPerLog);
        double first = std::floor(span.minLog / step) * step;
        const double pixelsPerStep = std::trunc(span.pixelsPerLog * step);
        if (pixelsPerStep >= 101) {
            step /= 2;
        } else if (pixelsPerStep <= 19) {
            step *= 2;
            first = std::floor(first / 2) * 2;
        }
        addDenseDecades(marks, first, step, span.maxLog, pseudoLogTransform, pseudoLogDecadeLabel);
    }
    return inOrder(std::move(marks), pseudoLogTransform);
}
