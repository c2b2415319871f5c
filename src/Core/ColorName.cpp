// The table of named colours and the search for the nearest.
#include "Core/ColorName.h"

#include <array>

namespace {

struct NamedColor {
    float hue, saturation, brightness; ///< 0 to 100
    std::string_view name;
};

// Red and maroon stand at both ends of the hues because the distance does not wrap around the colour circle.
// The order decides ties.
constexpr std::array<NamedColor, 17> namedColors{{
    {0, 0, 75, "Light gray"},
    {0, 0, 50, "Dark gray"},
    {0, 0, 0, "Black"},
    {0, 100, 50, "Red"},
    {100, 100, 50, "Red"},
    {100, 100, 25, "Maroon"},
    {0, 100, 25, "Maroon"},
    {16, 100, 50, "Yellow"},
    {8, 100, 50, "Orange"},
    {16, 100, 25, "Olive"},
    {33, 100, 50, "Green"},
    {33, 100, 25, "Dark green"},
    {50, 100, 50, "Aqua"},
    {66, 100, 50, "Blue"},
    {66, 100, 25, "Dark blue"},
    {83, 100, 50, "Magenta"},
    {83, 100, 25, "Purple"},
}};

constexpr float square(float value) {
    return value * value;
}

} // namespace

std::string_view colorName(const RgbaColor& color) {
    const RgbaColor::Hsb hsb = color.hsb();
    const auto hue = static_cast<float>(hsb.hue * 100);
    const auto saturation = static_cast<float>(hsb.saturation * 100);
    const auto brightness = static_cast<float>(hsb.brightness * 100);
    if (saturation < 10 && brightness > 90)
        return "White";
    if (brightness < 10)
        return "Black";

    std::string_view name;
    float bestDistance = 30000;
    for (const NamedColor& named : namedColors) {
        // Kept: the table's saturation is divided by 3 and the measured one is not, so saturated colours lie
        // far from every row and their hue and brightness decide.
        const float distance = square(named.hue - hue) + square(named.saturation / 3 - saturation) +
                               square(named.brightness - brightness);
        if (distance < bestDistance) {
            bestDistance = distance;
            name = named.name;
        }
    }
    return name;
}
