// Colours: the hexcone model, names, and the colour of a new curve.
#include "Core/ColorName.h"
#include "Core/NewCurveColor.h"
#include "Core/RgbaColor.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

TEST(RgbaColor, hasTheHueSaturationAndBrightnessOfTheHexcone) {
    struct Row {
        const char* name;
        RgbaColor color;
        double hue, saturation, brightness;
    };
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Row> rows{
        {"black", {0, 0, 0}, 0, 0, 0},
        {"gray", {0.4, 0.4, 0.4}, 0, 0, 0.4},
        {"red", {1, 0, 0}, 0, 1, 1},
        {"orange", {1, 0.5, 0}, 1 / 12.0, 1, 1},
        {"half a green", {0, 0.5, 0}, 2 / 6.0, 1, 0.5},
        {"pale blue", {0.5, 0.5, 1}, 4 / 6.0, 0.5, 1},
        {"just below the end of the circle", {1, 0, 0.5}, 11 / 12.0, 1, 1},
        {"components out of range count as the nearest", {7, -1, nan}, 0, 1, 1},
    };
    for (const Row& row : rows) {
        const RgbaColor::Hsb hsb = row.color.hsb();
        EXPECT_NEAR(hsb.hue, row.hue, 1e-15) << row.name;
        EXPECT_NEAR(hsb.saturation, row.saturation, 1e-15) << row.name;
        EXPECT_NEAR(hsb.brightness, row.brightness, 1e-15) << row.name;
    }
    EXPECT_EQ(RgbaColor::fromHsb(1, 1, 1), RgbaColor::fromHsb(0, 1, 1));
    EXPECT_EQ(RgbaColor::fromHsb(0.5, 1, 1, 0.25), (RgbaColor{0, 1, 1, 0.25}));
}

TEST(RgbaColor, fromHsbUndoesHsb) {
    for (double red = 0; red <= 1; red += 0.125) {
        for (double green = 0; green <= 1; green += 0.125) {
            for (double blue = 0; blue <= 1; blue += 0.125) {
                const RgbaColor::Hsb hsb = RgbaColor{red, green, blue}.hsb();
                const RgbaColor back = RgbaColor::fromHsb(hsb.hue, hsb.saturation, hsb.brightness);
                ASSERT_NEAR(back.red, red, 1e-15);
                ASSERT_NEAR(back.green, green, 1e-15);
                ASSERT_NEAR(back.blue, blue, 1e-15);
            }
        }
    }
}

TEST(ColorName, isThatOfTheNearestRow) {
    struct Row {
        const char* name;
        RgbaColor color;
    };
    const std::vector<Row> rows{
        {"White", {0.95, 0.9025, 0.9025}},
        {"Light gray", {0.75, 0.75, 0.75}},
        {"Light gray", {0.9, 0.9, 0.9}},       // not brighter than 90
        {"Light gray", {0.625, 0.625, 0.625}}, // as near to dark gray: the earlier row
        {"Dark gray", {0.5, 0.5, 0.5}},
        {"Black", {0.09, 0, 0}},
        {"Black", {0.2, 0.2, 0.2}},
        {"Red", {1, 0, 0}},
        {"Red", {1, 0, 0.1}},
        {"Maroon", {0.25, 0, 0}},
        {"Maroon", {0.25, 0, 0.02}},
        {"Yellow", {1, 1, 0}},
        {"Orange", {1, 0.5, 0}},
        {"Olive", {0.25, 0.25, 0}},
        {"Green", {0, 1, 0}},
        {"Dark green", {0, 0.25, 0}},
        {"Aqua", {0, 1, 1}},
        {"Blue", {0, 0, 1}},
        {"Dark blue", {0, 0, 0.25}},
        {"Magenta", {1, 0, 1}},
        {"Purple", {0.25, 0, 0.25}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(colorName(row.color), row.name) << row.color.red << row.color.green << row.color.blue;
    EXPECT_EQ(colorName(RgbaColor::fromHsb(0, 0.35, 0.75)), "Red")
        << "kept: a third of the table's saturation is compared with the whole measured one";
}

TEST(FindBestColor, bisectsTheWidestGapOfHues) {
    struct Row {
        const char* name;
        std::vector<double> hues;
        double hue;
    };
    const std::vector<Row> rows{
        {"one curve", {0.2}, 0.7},
        {"the first of two equal gaps", {0, 0.5}, 0.25},
        {"in any order, equal hues included", {0.5, 0.125, 0.125}, 0.8125},
        {"the gap across the end of the circle", {0.5, 0.9}, 0.2},
    };
    for (const Row& row : rows) {
        std::vector<RgbaColor> colors;
        for (const double hue : row.hues)
            colors.push_back(RgbaColor::fromHsb(hue, 0.7, 0.7));
        const RgbaColor::Hsb hsb = findBestColor(colors).hsb();
        EXPECT_NEAR(hsb.hue, row.hue, 1e-12) << row.name;
        EXPECT_NEAR(hsb.saturation, row.hue, 1e-12) << "kept: the hue is the saturation, too: " << row.name;
        EXPECT_EQ(hsb.brightness, 0.75) << row.name;
    }
    EXPECT_EQ(findBestColor({}), (RgbaColor{1, 0.5, 0, 1}));
}

} // namespace
