// Where a legend goes, and what is stored of where it was dropped.
#include "Core/LegendPlacement.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace LegendPlacement;

/// One direction of a view of 600: where a legend of 100 was dropped, and what that means for x and for y.
struct DropRow {
    const char* name;
    double place;
    int alignmentX;
    int alignmentY;
    double margin;
};

TEST(LegendPlacement, aDropSnapsToTheNearestEdgeOrMiddle) {
    const std::array rows{DropRow{"ten from the end", 490, 1, 8, 10},
                          DropRow{"at the start", 0, 4, 32, 0},
                          DropRow{"exactly centred", 250, 5, 40, 0},
                          DropRow{"before the centre", 220, 5, 40, 30},
                          DropRow{"after the centre, the offset is signed", 280, 5, 40, -30},
                          DropRow{"fractions are cut, not rounded", 10.9, 4, 32, 10},
                          DropRow{"cut towards zero behind the centre", 279.5, 5, 40, -29},
                          DropRow{"as near to the start as to the centre", 125, 5, 40, 125},
                          DropRow{"as near to the end as to the centre", 375, 1, 8, 125},
                          DropRow{"outside, before the start", -20, 4, 32, -20}};
    for (const DropRow& row : rows) {
        EXPECT_EQ(nearestAnchor({row.place, 250, 100, 100}, 600, 600),
                  (LegendAnchor{row.alignmentX | 40, row.margin, 0}))
            << row.name;
        EXPECT_EQ(nearestAnchor({250, row.place, 100, 100}, 600, 600),
                  (LegendAnchor{5 | row.alignmentY, 0, row.margin}))
            << row.name;
        if (row.place == static_cast<int>(row.place)) {
            const LegendAnchor anchor = nearestAnchor({row.place, row.place, 100, 100}, 600, 600);
            EXPECT_EQ(located({7, 7, 100, 100}, anchor, 600, 600).x, row.place) << row.name;
            EXPECT_EQ(located({7, 7, 100, 100}, anchor, 600, 600).y, row.place) << row.name;
        }
    }
    // Wider than its view: the end is nearer than the start, and further out than the middle.
    EXPECT_EQ(nearestAnchor({0, 0, 700, 100}, 600, 600).alignment & 5, 1);
}

TEST(LegendPlacement, nineChosenPlacesKeepToTheirEdges) {
    constexpr std::array alignmentsX{4, 5, 1};
    constexpr std::array alignmentsY{8, 40, 32}; // from the top
    constexpr std::array margins{10.0, 0.0, 10.0};
    for (int place = 0; place < 9; ++place) {
        const auto column = static_cast<std::size_t>(place % 3);
        const auto row = static_cast<std::size_t>(place / 3);
        const LegendPlace chosen{place % 3, place / 3};
        const LegendAnchor anchor{alignmentsX[column] | alignmentsY[row], margins[column], margins[row]};
        EXPECT_EQ(anchorAt(chosen), anchor) << place;
        EXPECT_EQ(placeOf(anchor.alignment), chosen) << place;
    }
    EXPECT_EQ(placeOf(0), (LegendPlace{2, 0}));
    EXPECT_EQ(placeOf(flexibleLeft), std::nullopt);
}

struct LocationRow {
    const char* name;
    LegendAnchor anchor;
    double x;
    double y;
};

TEST(LegendPlacement, anAnchorGivesAPlaceInAViewOfAnySize) {
    const std::array rows{LocationRow{"created", created, 800 - 120 - 10, 500 - 80 - 10},
                          LocationRow{"bottom left", {36, 5, 7}, 5, 7},
                          LocationRow{"centred with offsets", {45, 4, -6}, 400 - 60 - 4, 250 - 40 + 6},
                          LocationRow{"top centre", {13, 0, 3}, 340, 500 - 80 - 3},
                          LocationRow{"nothing said", {0, 5, 7}, 1, 2},
                          LocationRow{"width bits and unknown ones say nothing", {2 | 16 | 64, 5, 7}, 1, 2}};
    for (const LocationRow& row : rows)
        EXPECT_EQ(located({1, 2, 120, 80}, row.anchor, 800, 500), (LegendFrame{row.x, row.y, 120, 80}))
            << row.name;
}

TEST(LegendPlacement, staysInsideItsView) {
    EXPECT_EQ(clamped({-3, -4, 50, 20}, 100, 100), (LegendFrame{0, 0, 50, 20}));
    EXPECT_EQ(clamped({70, 90, 50, 20}, 100, 100), (LegendFrame{50, 80, 50, 20}));
    EXPECT_EQ(clamped({10, 10, 150, 20}, 100, 100), (LegendFrame{-50, 10, 150, 20}));
    const LegendFrame area{40, 30, 60, 70};
    EXPECT_EQ(keptWithin({0, 0, 50, 20}, area), (LegendFrame{40, 30, 50, 20}));
    EXPECT_EQ(keptWithin({90, 95, 50, 20}, area), (LegendFrame{50, 80, 50, 20}));
    EXPECT_EQ(keptWithin({5, 0, 80, 20}, area), (LegendFrame{5, 30, 80, 20})) << "too wide for the area";
}

} // namespace
