// The cut into blocks, and the greatest rectangle of full ones.
#include "Core/FullBlocks.h"

#include <array>
#include <bit>
#include <limits>
#include <numeric>

namespace {

constexpr int leastStackWidth = 8;
constexpr int leastBandHeight = 2;
constexpr int mostStacks = 256; ///< the search for the greatest rectangle takes time by their square
constexpr int mostBands = 64;
constexpr std::array sizesAtBorder{1, 1, 2, 4};

/// The ends of at most `most` parts of `size` pixels, each of at least `least` pixels but for those at the
/// border and the last of the others.
std::vector<int> partsOf(int size, int most, int least) {
    std::vector<int> ends;
    int end = 0;
    const auto add = [&](int pixels) {
        if (pixels > 0)
            ends.push_back(end += pixels);
    };
    const int atBorder = std::accumulate(sizesAtBorder.begin(), sizesAtBorder.end(), 0);
    const int between = size - 2 * atBorder;
    if (between <= 0) {
        while (end < size)
            add(std::min(least, size - end));
        return ends;
    }
    std::for_each(sizesAtBorder.begin(), sizesAtBorder.end(), add);
    const int others = most - 2 * static_cast<int>(sizesAtBorder.size());
    const int pixels = std::max(least, (between + others - 1) / others);
    while (end < size - atBorder)
        add(std::min(pixels, size - atBorder - end));
    std::for_each(sizesAtBorder.rbegin(), sizesAtBorder.rend(), add);
    return ends;
}

/// Of each pixel, and of the border behind the last one, the part in which it lies.
template <typename Index>
std::vector<Index> indices(const std::vector<int>& ends) {
    std::vector<Index> all;
    for (std::size_t i = 0; i < ends.size(); ++i)
        all.resize(static_cast<std::size_t>(ends[i]), static_cast<Index>(i));
    all.push_back(all.empty() ? Index{} : all.back());
    return all;
}

} // namespace

FullBlocks::FullBlocks(int width, int height)
    : m_width(width), m_height(height), m_stackEnds(partsOf(width, mostStacks, leastStackWidth)),
      m_bandEnds(partsOf(height, mostBands, leastBandHeight)), m_stackAt(indices<std::uint16_t>(m_stackEnds)),
      m_bandAt(indices<std::uint8_t>(m_bandEnds)), m_full(m_stackEnds.size()) {
    if (m_bandEnds.empty())
        m_bandEnds.push_back(0);
}

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
        const int left = columns(begin).first;
        Bands common = allBands();
        for (int end = begin; end < stacks(); ++end) {
            common &= full(end);
            if (common == 0)
                break;
            const std::int64_t mostRows =
                rows(mostBands - 1 - std::countl_zero(common)).end - rows(std::countr_zero(common)).first;
            if (mostRows * (m_width - left) <= greatestArea)
                break;
            const int right = columns(end).end;
            for (Bands rest = common; rest != 0;) {
                const int first = std::countr_zero(rest);
                const int count = std::countr_one(rest >> first);
                rest &= ~(~Bands{0} >> (mostBands - count) << first);
                const int low = rows(first).first;
                const int high = rows(first + count - 1).end;
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
