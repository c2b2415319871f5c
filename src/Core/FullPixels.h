// Which pixels of a picture are full, so that drawing there again shows nothing.
#pragma once

#include "Core/PixelRange.h"
#include "Core/SegmentClip.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A bit for each pixel. Eight neighbouring columns are a stack; a stack is also cut into at most 64 bands of
/// rows, so that one word tells which of them are wholly full. All measures are pixels, rows count upwards.
class FullPixels {
  public:
    static constexpr int stackWidth = 8;
    /// The columns of a stack, one bit each, from the left. Those beyond the last one of the picture are
    /// full.
    using RowBits = std::uint8_t;
    /// The bands of a stack, one bit each, from the lowest.
    using Bands = std::uint64_t;

    /// Nothing is full. `width` and `height` are not negative.
    FullPixels(int width, int height);

    int stacks() const { return static_cast<int>(m_fullBands.size()); }
    PixelRange columns(int stack) const {
        return {stack * stackWidth, std::min(m_width, (stack + 1) * stackWidth)};
    }
    int bands() const { return m_bands; }
    PixelRange rows(int band) const {
        return {band * m_bandHeight, std::min(m_height, (band + 1) * m_bandHeight)};
    }

    /// Of each row of a stack. After a change the stack must be updated before anything is asked.
    std::span<RowBits> rowBits(int stack) {
        m_isTouched = true;
        const auto height = static_cast<std::size_t>(m_height);
        return std::span(m_rowBits).subspan(static_cast<std::size_t>(stack) * height, height);
    }
    void update(int stack);
    bool isBandFull(int stack, int band) const {
        return (m_fullBands[static_cast<std::size_t>(stack)] >> static_cast<unsigned>(band) & 1U) != 0;
    }
    bool isStackFull(int stack) const { return m_fullBands[static_cast<std::size_t>(stack)] == allBands(); }
    /// Whether any band of any stack is full.
    bool isAnyFull() const { return m_isAnyFull; }
    void clear();

    /// Whether all that the columns, not none, have of the rows from `low` to `high`, low <= high, is full.
    /// Both may lie outside, where nothing is drawn; then the row at the border counts.
    bool covers(PixelRange columns, double low, double high) const {
        for (int stack = columns.first / stackWidth; stack * stackWidth < columns.end; ++stack) {
            if (!coversInStack(stack, columns, low, high))
                return false;
        }
        return true;
    }
    /// The same for those of the columns that lie in one stack.
    bool coversInStack(int stack, PixelRange columns, double low, double high) const {
        const int first = rowAt(low);
        const int last = rowAt(high);
        const Bands needed = (~Bands{0} << bandAt(first)) & (~Bands{0} >> (63 - bandAt(last)));
        return (needed & ~m_fullBands[static_cast<std::size_t>(stack)]) == 0 ||
               areRowsFull(stack, columns, first, last);
    }

    /// A great rectangle that is full, less `margin` at each side; without an end at a side where it reaches
    /// the picture's border. It is the greatest one of bands and stacks, and what is full beside that.
    /// Without any point when no band is full.
    ClipBox greatBox(double margin) const;

  private:
    struct Box {
        PixelRange columns;
        PixelRange rows;
    };

    Bands allBands() const { return ~Bands{0} >> (64 - m_bands); }
    int rowAt(double y) const { return static_cast<int>(std::clamp<double>(y, 0, m_lastRow)); }
    unsigned bandAt(int row) const { return static_cast<unsigned>(row * m_bandsPerRow); }
    const RowBits* bitsOf(int stack) const {
        return m_rowBits.data() + static_cast<std::size_t>(stack) * static_cast<std::size_t>(m_height);
    }
    bool areRowsFull(int stack, PixelRange columns, int first, int last) const;
    Box greatestBox() const;
    void grow(Box& box) const;

    int m_width;
    int m_height;
    int m_lastRow;
    int m_bandHeight;
    int m_bands;
    double m_bandsPerRow;
    std::vector<RowBits> m_rowBits; ///< stack by stack, row by row
    std::vector<Bands> m_fullBands; ///< of each stack
    bool m_isTouched = false;       ///< since it was cleared
    bool m_isAnyFull = false;
};
