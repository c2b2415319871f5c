// Filters that see a signal as a stream: one value in, one value out, state from row to row. A copy goes on
// from the state it was made in. "Finite" means neither NaN nor infinite; a value that is missing is NaN.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <span>
#include <vector>

/// Average of the finite values among the last `size` values: a value that is not finite takes a place, too.
/// The sum is kept by adding what comes and subtracting what goes, so that any size costs the same.
class MovingAverage {
  public:
    static constexpr std::size_t greatestSize = 100'000;

    /// `size` is 1 to `greatestSize`.
    explicit MovingAverage(std::size_t size);

    /// The average with `x` as the newest value; NaN while no finite value is in the window.
    double push(double x);

  private:
    std::vector<double> m_ring;
    std::size_t m_position = 0;
    std::size_t m_finiteCount = 0;
    double m_sum = 0;
};

/// Difference to the previous finite value. A gap is NaN and does not break the chain; so is the first finite
/// value.
class Difference {
  public:
    double push(double x);

  private:
    double m_previous = std::numeric_limits<double>::quiet_NaN();
};

/// Running sum of the finite values, from 0.
class CumulativeSum {
  public:
    double push(double x);

  private:
    double m_sum = 0;
};

/// Exponential smoothing of first order, y += a (x - y): `a` is the weight of the new value, 0 <= a < 1. The
/// first finite value starts it; a value that is not finite repeats y.
class LowPassFilter {
  public:
    /// NaN, and no change, for an `a` that is out of range.
    double push(double x, double a);

  private:
    double m_y = std::numeric_limits<double>::quiet_NaN();
};

/// High-pass filter of first order, y = a (y + x - previous x), 0 <= a < 1, from 0; a value that is not
/// finite repeats y.
class HighPassFilter {
  public:
    /// NaN, and no change, for an `a` that is out of range.
    double push(double x, double a);

  private:
    double m_y = 0;
    double m_previous = std::numeric_limits<double>::quiet_NaN();
};

/// An ascending list of finite values in blocks: inserting, erasing and selecting touch one block, however
/// long the list.
class SortedValues {
  public:
    struct Neighbours {
        double value;
        double successor; ///< the value itself at the end of the list
    };

    std::size_t size() const { return m_size; }
    /// Puts `x` before the first value that is not less.
    void insert(double x);
    /// Takes out the first value that is not less than `x`; there has to be one.
    void eraseFirst(double x);
    /// `index` is below `size()`.
    Neighbours at(std::size_t index) const;

  private:
    using Block = std::vector<double>; ///< never empty

    std::vector<Block>::iterator blockFor(double x);

    std::vector<Block> m_blocks;
    std::size_t m_size = 0;
};

/// Percentile of the last finite values, linearly interpolated between the closest ranks. The window counts
/// values: one that is not finite is not stored.
class MovingPercentile {
  public:
    /// Adds `x`, then keeps the newest `windowSize` values, truncated toward zero, and returns their
    /// percentile `p`, also truncated. Kept: a window size of 0 empties the window, a negative one (or NaN)
    /// keeps every value for ever. `p` beyond 0 or 100 gives the least or greatest value, NaN gives NaN; so
    /// does an empty window.
    double push(double x, double p, double windowSize);

  private:
    double select(double p) const;

    std::deque<double> m_arrivals;
    SortedValues m_sorted;
};

/// Finite impulse response of K coefficients, NaN for the first K values.
class FirFilter {
  public:
    /// K is the number of coefficients of the first call; without any the result is NaN.
    /// Kept: the first coefficient weighs the newest value, the second to the last weigh the K - 1 values
    /// before it from the oldest on. Older values that are not finite add nothing.
    double push(double x, std::span<const double> coefficients);

  private:
    std::vector<double> m_ring;
    std::size_t m_position = 0;
    bool m_filled = false;
};
