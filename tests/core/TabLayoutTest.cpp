// Widths and places of tabs, from plenty of room to none.
#include "Core/TabLayout.h"

#include <gtest/gtest.h>

namespace {

struct LayoutRow {
    const char* name;
    std::vector<TabWidths> tabs;
    int barWidth;
    int paddingLeft;
    int paddingRight;
    std::vector<TabFrame> frames;
};

TEST(TabLayout, tabsShareTheRoomAndOverlapMoreWhenItEnds) {
    const TabWidths plain{100, 200};
    const TabWidths fixed{75, 75};
    const LayoutRow rows[] = {
        {"no tabs", {}, 500, 30, 10, {}},
        {"room for all", {plain, plain}, 428, 30, 10, {{30, 200}, {218, 200}}},
        {"one point short: every tab gives one", {plain, plain}, 387, 0, 0, {{0, 199}, {187, 199}}},
        {"a share first, single points then",
         {plain, plain, plain},
         500,
         0,
         0,
         {{0, 174}, {162, 174}, {324, 174}}},
        {"a fixed tab keeps its width", {fixed, plain, plain}, 400, 10, 5, {{10, 75}, {73, 167}, {228, 167}}},
        {"unequal least widths stop one by one", {{190, 200}, plain}, 300, 0, 0, {{0, 190}, {178, 122}}},
        {"least widths overlap more",
         {plain, plain, plain, plain, plain},
         400,
         0,
         0,
         {{0, 100}, {75, 100}, {150, 100}, {225, 100}, {300, 100}}},
        {"at the least advance they overflow",
         {plain, plain, plain},
         60,
         30,
         10,
         {{30, 100}, {50, 100}, {70, 100}}},
        {"a single tab overflows at its least width", {plain}, 20, 0, 0, {{0, 100}}},
    };
    for (const LayoutRow& row : rows)
        EXPECT_EQ(layoutTabs(row.tabs, row.barWidth, row.paddingLeft, row.paddingRight), row.frames)
            << row.name;

    const std::vector<TabFrame> many = layoutTabs(std::vector<TabWidths>(20, plain), 300, 0, 0);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(many[static_cast<std::size_t>(i)], (TabFrame{20 * i, 100}));
}

} // namespace
