// Where the tabs of a tab bar lie: widths that share the room, overlaps that give way last.
#pragma once

#include <span>
#include <vector>

struct TabWidths {
    int minimum;
    int maximum;
};

/// A tab's place in its bar, in whole points.
struct TabFrame {
    int x;
    int width;

    bool operator==(const TabFrame&) const = default;
};

/// Adjacent tabs overlap by this much while there is room.
inline constexpr int tabOverlap = 12;

/// Tabs start at their greatest width and give way together, each down to its least one; after that they
/// overlap more, down to an advance of 20; after that they overflow the bar.
std::vector<TabFrame> layoutTabs(std::span<const TabWidths> tabs, int barWidth, int paddingLeft,
                                 int paddingRight);
