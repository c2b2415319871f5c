// The cut into blocks, and the greatest rectangle of full ones.
#include "Core/FullBlocks.h"

#include <bit>
#include <limits>

namespace {

constexpr int leastStackWidth = 8;
constexpr int mostStacks = 256; ///< the search for the greatest rectangle takes time by their square
constexpr int mostBands = 64;

int parts(int whole, int part) {
    return (whole + part - 1) / part;
}

} // namespace

FullBlocks::FullBlocks(int width, int height)
    : m_width(width), m_height(height), m_stackWidth(std::max(leastStackWidth, parts(width, mostStacks))),
      m_bandHeight(std::max(1, parts(height, mostBands))), m_bands(std::max(1, parts(height, m_bandHeight))),
      m_bandsPerRow(1.0 / m_bandHeight), m_full(static_cast<std::size_t>(parts(width, m_stackWidth))) {}

void FullBlocks::setFull(int stack, Bands bands) {
    m_full[static_cast<std::size_t>(stack)] = bands;
    m_isAnyFull = m_isAnyFull || bands != 0;
}

void FullBlocks::clear() {
    if (m_isAnyFull)
        std::fill(m_full.begin(), m_full.end(), 0);
    m_isAnyFull = false;
}

ClipBox FullBlocks::greatestBox(double margin) const {
    constexpr double beyond = std::numeric_limits<double>::infinity();
    ClipBox greatest{1, 1, 0, 0};
    std::int64_t greatestArea = 0;
    for (int begin = 0; begin < stacks(); ++begin) {
        const int left = begin * m_stackWidth;
        Bands common = allBands();
        for (int end = begin; end < stacks(); ++end) {
            common &= full(end);
            const std::int64_t mostRows = std::int64_t{std::popcount(common)} * m_bandHeight;
            if (mostRows * (m_width - left) <= greatestArea)
                break;
            const int right = std::min(m_width, left + (end + 1 - begin) * m_stackWidth);
            for (Bands rest = common; rest != 0;) {
                const int first = std::countr_zero(rest);
                const int count = std::countr_one(rest >> first);
                rest &= ~(~Bands{0} >> (mostBands - count) << first);
                const int low = first * m_bandHeight;
                const int high = std::min(m_height, (first + count) * m_bandHeight);
                const std::int64_t area = std::int64_t{high - low} * (right - left);
                if (area <= greatestArea)
                    continue;
                greatestArea = area;
                greatest = {left == 0 ? -beyond : left + margin, low == 0 ? -beyond : low + margin,
                            right == m_width ? beyond : right - margin,
                            high == m_height ? beyond : high - margin};
            }
        }
    }
    return greatest;
}
