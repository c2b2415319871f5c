// Which blocks of a picture are full, so that drawing there again shows nothing.
#pragma once

#include "Core/SegmentClip.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A picture cut into stacks of blocks: a stack has a few neighbouring columns of pixels, its blocks are at
/// most 64 bands of rows, counted upwards. All measures are pixels.
class FullBlocks {
  public:
    /// The bands of a stack, one bit each, from the lowest.
    using Bands = std::uint64_t;

    /// Nothing is full. `width` and `height` are not negative.
    FullBlocks(int width, int height);

    int stacks() const { return static_cast<int>(m_full.size()); }
    int stackWidth() const { return m_stackWidth; } ///< the last one may have fewer columns
    int bands() const { return m_bands; }
    int bandHeight() const { return m_bandHeight; } ///< the highest one may have fewer rows
    Bands allBands() const { return ~Bands{0} >> (64 - m_bands); }

    void setFull(int stack, Bands bands);
    Bands full(int stack) const { return m_full[static_cast<std::size_t>(stack)]; }
    bool isAnyFull() const { return m_isAnyFull; }
    void clear();

    /// Whether all that the stack has of the rows from `low` to `high`, low <= high, is full. Both may lie
    /// outside, where nothing is drawn.
    bool covers(int stack, double low, double high) const {
        const Bands needed = (~Bands{0} << bandAt(low)) & (~Bands{0} >> (63 - bandAt(high)));
        return (needed & ~full(stack)) == 0;
    }

    /// The greatest rectangle that is full, less `margin` at each side; without an end at a side where it
    /// reaches the picture's border. Without any point when nothing is full.
    ClipBox greatestBox(double margin) const;

  private:
    unsigned bandAt(double y) const {
        return std::min(static_cast<unsigned>(std::clamp<double>(y, 0, m_height) * m_bandsPerRow),
                        static_cast<unsigned>(m_bands - 1));
    }

    int m_width;
    int m_height;
    int m_stackWidth;
    int m_bandHeight;
    int m_bands;
    double m_bandsPerRow;
    bool m_isAnyFull = false;
    std::vector<Bands> m_full; ///< of each stack
};
