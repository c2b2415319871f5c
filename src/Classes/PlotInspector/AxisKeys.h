// The names of a document's keys for one of its axes.
#pragma once

struct AxisKeys {
    const char* title;
    const char* kind;
    const char* min;
    const char* max;
    const char* origin;    ///< the line along this axis, where the other one is 0
    const char* gridLines; ///< those at this axis' marks
};

inline constexpr AxisKeys axisKeysX{"axisTitleX", "axisX_type",  "axisMinX",
                                    "axisMaxX",   "showOriginX", "showVerticalLines"};
inline constexpr AxisKeys axisKeysY{"axisTitleY", "axisY_type",  "axisMinY",
                                    "axisMaxY",   "showOriginY", "showHorizontalLines"};
