// Neighbouring columns or rows of pixels.
#pragma once

#include <algorithm>
#include <limits>

/// From `first` to before `end`; without any when first >= end.
struct PixelRange {
    int first;
    int end;

    bool isEmpty() const { return first >= end; }
    int count() const { return end - first; }
    /// Of the two and of all between them.
    PixelRange unitedWith(PixelRange other) const {
        return isEmpty()         ? other
               : other.isEmpty() ? *this
                                 : PixelRange{std::min(first, other.first), std::max(end, other.end)};
    }
};

/// Where pixels are touched one after another: it grows by the least first and the greatest end.
constexpr PixelRange noPixels{std::numeric_limits<int>::max(), 0};
