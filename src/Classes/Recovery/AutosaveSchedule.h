// When a changed document is due for an autosave: a while after the last change, but not put off for ever.
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

struct AutosaveIntervals {
    std::chrono::milliseconds quiet{30'000};    ///< without a change
    std::chrono::milliseconds longest{120'000}; ///< since the first change that was not written
};

/// Knows no clock: its user brings the time.
class AutosaveSchedule {
  public:
    using Time = std::chrono::steady_clock::time_point;

    explicit AutosaveSchedule(AutosaveIntervals intervals) : m_intervals(intervals) {}

    /// The document changed at that time. Returns how long to wait from then on; never negative.
    std::chrono::milliseconds changed(Time now) {
        if (!m_firstChange)
            m_firstChange = now;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(*m_firstChange + m_intervals.longest - now);
        return std::clamp(left, std::chrono::milliseconds(0), m_intervals.quiet);
    }
    /// What changed so far was written, or needs no writing.
    void written() { m_firstChange.reset(); }

  private:
    AutosaveIntervals m_intervals;
    std::optional<Time> m_firstChange;
};
