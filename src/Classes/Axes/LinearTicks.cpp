// Chooses a step of 1, 2 or 5 times a power of ten and walks over the range.
#include "Classes/Axes/LinearTicks.h"

#include "Core/ClampToInt.h"
#include "Core/NumberText.h"

#include <cmath>
#include <utility>

namespace {

constexpr double maxMajorTicks = 10000;

struct Step {
    double size;
    int subdivisions;
};

Step chooseStep(double span, double base) {
    const double r = span / base; // 1 to 10
    if (r >= 5)
        return {5 * base, 5};
    if (r > 2)
        return {2 * base, 2};
    return {base, 10};
}

// Whether a walk by `step` can start at or end beside `value`.
bool advances(double value, double step) {
    return std::isfinite(value + step) && std::isfinite(value - step) && value + step > value &&
           value - step < value;
}

// The greatest anchor + k * step that is not above `min`.
double walkOnto(double min, double anchor, double step) {
    double nice = anchor + std::floor((min - anchor) / step) * step;
    // The product may have been rounded past its goal, by a step at most.
    while (nice > min)
        nice -= step;
    while (nice + step <= min)
        nice += step;
    return nice;
}

std::vector<XAxisTick> makeMarks(const LinearTicks& scale, int subdivisions, double max) {
    std::vector<XAxisTick> marks;
    // In a range of a few representable values there may be no room between two marks.
    const auto append = [&marks](XAxisTick mark) {
        if (marks.empty() || mark.value > marks.back().value)
            marks.push_back(std::move(mark));
    };
    const auto major = [&scale](int i) { return scale.niceValue + i * scale.tickStep; };
    for (int i = 0; major(i) <= max + scale.tickStep; ++i) {
        const double value = major(i);
        append(
            {value, QString::fromStdString(stringFromDoubleWithPrecision(value, scale.exponent)), {}, 0, 0});
        for (int k = 1; k < subdivisions; ++k)
            if (const double minor = value + k * (scale.tickStep / subdivisions); minor < major(i + 1))
                append({minor, {}, {}, 1, 0});
    }
    return marks;
}

} // namespace

double powerOfTenBelow(double value) {
    return std::pow(10, std::floor(std::log10(value)));
}

LinearTicks makeLinearTicks(double min, double max, double spanOf150Pixels, TickAnchor anchor) {
    LinearTicks scale;
    if (!std::isfinite(min) || !std::isfinite(max) || min >= max)
        return scale;
    if (!std::isfinite(max - min) || !std::isfinite(spanOf150Pixels) || spanOf150Pixels <= 0)
        return scale;

    const double base = powerOfTenBelow(spanOf150Pixels);
    const Step step = chooseStep(spanOf150Pixels, base);
    // Subnormal spans have a base of zero: the comparisons fail for what is not a number.
    if (!(base > 0) || !advances(min, step.size) || !advances(max, step.size) ||
        !((max - min) / step.size <= maxMajorTicks))
        return scale;

    scale.rangeStep = powerOfTenBelow(max - min);
    const bool onZero = anchor == TickAnchor::Zero || (min <= 0 && max >= 0) || !(scale.rangeStep > 0);
    scale.tickStep = step.size;
    scale.niceValue =
        walkOnto(min, onZero ? 0 : std::floor(min / scale.rangeStep) * scale.rangeStep, step.size);
    scale.exponent = clampToInt(std::floor(std::log10(spanOf150Pixels)));
    scale.ticks = std::make_shared<const std::vector<XAxisTick>>(
        clampToInt((max - min) / step.size) == 0 ? std::vector<XAxisTick>()
                                                 : makeMarks(scale, step.subdivisions, max));
    return scale;
}
