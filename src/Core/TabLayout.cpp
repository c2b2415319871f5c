// Shrinks widths, then advances, until the tabs fit.
#include "Core/TabLayout.h"

#include <algorithm>
#include <functional>

namespace {

constexpr int leastAdvance = 20;

struct Tab {
    int minimum;
    int width;
    int advance; ///< from this tab's left edge to the next one's

    bool shrinkable() const { return width > minimum; }
};

int totalWidth(std::span<const Tab> tabs) {
    int total = tabs.back().width;
    for (const Tab& tab : tabs.first(tabs.size() - 1))
        total += tab.advance;
    return total;
}

void shrinkWidths(std::span<Tab> tabs, int cut) {
    for (Tab& tab : tabs) {
        tab.width -= std::min(cut, tab.width - tab.minimum);
        tab.advance = tab.width - tabOverlap;
    }
}

/// Returns whether any advance could still give way.
bool shrinkAdvances(std::span<Tab> tabs) {
    bool shrunk = false;
    for (Tab& tab : tabs) {
        if (tab.advance > leastAdvance) {
            --tab.advance;
            shrunk = true;
        }
    }
    return shrunk;
}

} // namespace

std::vector<TabFrame> layoutTabs(std::span<const TabWidths> tabs, int barWidth, int paddingLeft,
                                 int paddingRight) {
    if (tabs.empty())
        return {};
    std::vector<Tab> work;
    work.reserve(tabs.size());
    for (const TabWidths& widths : tabs)
        work.push_back({widths.minimum, widths.maximum, widths.maximum - tabOverlap});

    const int available = barWidth - paddingLeft - paddingRight;
    for (int total = totalWidth(work); total > available; total = totalWidth(work)) {
        const auto shrinkable =
            static_cast<int>(std::count_if(work.begin(), work.end(), std::mem_fn(&Tab::shrinkable)));
        if (shrinkable > 0)
            shrinkWidths(work, std::max(1, (total - available) / shrinkable));
        else if (!shrinkAdvances(work))
            break;
    }

    std::vector<TabFrame> frames;
    frames.reserve(work.size());
    int x = paddingLeft;
    for (const Tab& tab : work) {
        frames.push_back({x, tab.width});
        x += tab.advance;
    }
    return frames;
}
