// Which blocks of a picture are full, so that drawing there again shows nothing.
#pragma once

#include "Core/PixelRange.h"
#include "Core/SegmentClip.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A picture cut into stacks of blocks: a stack has a few neighbouring columns of pixels, its blocks are at
/// most 64 bands of rows, counted upwards. Towards the border of the picture they become smaller: there a
/// line in no order is thinnest, and most of what it leaves open in the end. All measures are pixels.
class FullBlocks {
  public:
    /// The bands of a stack, one bit each, from the lowest.
    using Bands = std::uint64_t;

    /// Nothing is full. `width` and `height` are not negative.
    FullBlocks(int width, int height);

    int stacks() const { return static_cast<int>(m_full.size()); }
    PixelRange columns(int stack) const { return rangeAt(m_stackEnds, stack); }
    int stackAt(int column) const { return m_stackAt[static_cast<std::size_t>(column)]; }
    int bands() const { return static_cast<int>(m_bandEnds.size()); }
    PixelRange rows(int band) const { return rangeAt(m_bandEnds, band); }
    Bands allBands() const { return ~Bands{0} >> (64 - m_bandEnds.size()); }

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
    static PixelRange rangeAt(const std::vector<int>& ends, int i) {
        const auto at = static_cast<std::size_t>(i);
        return {at == 0 ? 0 : ends[at - 1], ends[at]};
    }
    unsigned bandAt(double y) const {
        return m_bandAt[static_cast<std::size_t>(std::clamp<double>(y, 0, m_height))];
    }

    int m_width;
    int m_height;
    std::vector<int> m_stackEnds;         ///< columns
    std::vector<int> m_bandEnds;          ///< rows; of at least one band
    std::vector<std::uint16_t> m_stackAt; ///< of each column
    std::vector<std::uint8_t> m_bandAt;   ///< of each row and of the upper border
    bool m_isAnyFull = false;
    std::vector<Bands> m_full; ///< of each stack
};
