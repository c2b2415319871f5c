// The arithmetic of the stream filters.
#include "Core/SignalFilters.h"

#include "Core/Assertions.h"
#include "Core/MissingValue.h"

#include <algorithm>
#include <cmath>

namespace {

/// Also false for NaN.
bool isWeight(double a) {
    return a >= 0 && a < 1;
}

} // namespace

MovingAverage::MovingAverage(std::size_t size)
    : m_ring(std::clamp<std::size_t>(size, 1, greatestSize), missing) {}

double MovingAverage::push(double x) {
    double& slot = m_ring[m_position];
    if (std::isfinite(slot)) {
        m_sum -= slot;
        --m_finiteCount;
    }
    if (std::isfinite(x)) {
        m_sum += x;
        ++m_finiteCount;
    }
    slot = x;
    if (++m_position == m_ring.size())
        m_position = 0;
    if (m_finiteCount == 0 || !xAssert(m_finiteCount <= m_ring.size(), "m_actualDataSize <= m_size"))
        return missing;
    return m_sum / static_cast<double>(m_finiteCount);
}

double Difference::push(double x) {
    double result = missing;
    if (std::isfinite(m_previous)) {
        if (!std::isfinite(x))
            return missing;
        result = x - m_previous;
    }
    m_previous = x;
    return result;
}

double CumulativeSum::push(double x) {
    if (std::isfinite(x))
        m_sum += x;
    return m_sum;
}

double LowPassFilter::push(double x, double a) {
    if (!isWeight(a))
        return missing;
    if (std::isfinite(x))
        m_y = std::isfinite(m_y) ? m_y + a * (x - m_y) : x;
    return m_y;
}

double HighPassFilter::push(double x, double a) {
    if (!isWeight(a))
        return missing;
    if (std::isfinite(x)) {
        if (std::isfinite(m_previous))
            m_y = a * (m_y + x - m_previous);
        m_previous = x;
    }
    return m_y;
}

/// The block that holds the first value that is not less than `x`, or the end.
std::vector<SortedValues::Block>::iterator SortedValues::blockFor(double x) {
    return std::partition_point(m_blocks.begin(), m_blocks.end(),
                                [x](const Block& block) { return block.back() < x; });
}

void SortedValues::insert(double x) {
    constexpr std::size_t greatestBlock = 1024; // 8 KiB: what moves within a block stays in the nearest cache
    ++m_size;
    if (m_blocks.empty()) {
        m_blocks.emplace_back().reserve(greatestBlock);
        m_blocks.front().push_back(x);
        return;
    }
    auto block = blockFor(x);
    if (block == m_blocks.end())
        --block;
    block->insert(std::lower_bound(block->begin(), block->end(), x), x);
    if (block->size() == greatestBlock) {
        const auto middle = block->begin() + greatestBlock / 2;
        Block upper(middle, block->end());
        block->erase(middle, block->end());
        m_blocks.insert(block + 1, std::move(upper));
    }
}

void SortedValues::eraseFirst(double x) {
    const auto block = blockFor(x);
    if (!xAssert(block != m_blocks.end(), "The value to erase is not in the list"))
        return;
    block->erase(std::lower_bound(block->begin(), block->end(), x));
    if (block->empty())
        m_blocks.erase(block);
    --m_size;
}

SortedValues::Neighbours SortedValues::at(std::size_t index) const {
    auto block = m_blocks.begin();
    while (index >= block->size())
        index -= (block++)->size();
    const double value = (*block)[index];
    if (index + 1 < block->size())
        return {value, (*block)[index + 1]};
    return {value, block + 1 == m_blocks.end() ? value : (block + 1)->front()};
}

double MovingPercentile::push(double x, double p, double windowSize) {
    if (std::isfinite(x)) {
        m_arrivals.push_back(x);
        m_sorted.insert(x);
        // False for a negative size and for NaN, so nothing is ever removed then.
        while (windowSize > -1 && static_cast<double>(m_arrivals.size()) > std::trunc(windowSize)) {
            m_sorted.eraseFirst(m_arrivals.front());
            m_arrivals.pop_front();
        }
    }
    return select(p);
}

double MovingPercentile::select(double p) const {
    const std::size_t count = m_sorted.size();
    if (count == 0 || std::isnan(p))
        return missing;
    const auto percent = static_cast<float>(std::trunc(std::clamp(p, -1e6, 1e6)));
    if (percent == 50) {
        const auto [lower, upper] = m_sorted.at((count - 1) / 2);
        return count % 2 == 1 ? lower : (lower + upper) / 2;
    }
    // In single precision: the rank of a long window is rounded, so it may pass the last value.
    const float rank = static_cast<float>(count - 1) * percent / 100.0F + 1.0F;
    const float wholeRank = std::trunc(rank);
    if (wholeRank < 1)
        return m_sorted.at(0).value;
    if (wholeRank >= static_cast<float>(count))
        return m_sorted.at(count - 1).value;
    const auto [value, successor] = m_sorted.at(static_cast<std::size_t>(wholeRank) - 1);
    return value + static_cast<double>(rank - wholeRank) * (successor - value);
}

double FirFilter::push(double x, std::span<const double> coefficients) {
    if (m_ring.empty())
        m_ring.resize(coefficients.size());
    const std::size_t size = m_ring.size();
    if (size == 0 || coefficients.size() != size)
        return missing;
    m_ring[m_position] = x;
    double sum = missing;
    if (m_filled) {
        sum = coefficients[0] * x;
        std::size_t oldest = m_position;
        for (std::size_t k = 1; k < size; ++k) {
            oldest = oldest + 1 == size ? 0 : oldest + 1;
            if (std::isfinite(m_ring[oldest]))
                sum += coefficients[k] * m_ring[oldest];
        }
    }
    if (++m_position == size) {
        m_position = 0;
        m_filled = true;
    }
    return sum;
}
