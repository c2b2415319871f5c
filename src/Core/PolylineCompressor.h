// Reduces a polyline of any length to the points that can be seen at the pixel resolution it is drawn at.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>

/// A point of the reduced line.
struct PlotPoint {
    std::int32_t index; ///< number of the point among those added, modulo 2^32; -1 for none
    float x;            ///< pixels
    float y;            ///< pixels
};

/// Points that stay on one pixel column, or on one pixel row, form a group. Of each group the first, the
/// extreme and the last points are kept, in the order of the data. A group ends when both the column and the
/// row have changed since it began, so the output grows with the pixels of the line and not with its points.
class PolylineCompressor {
  public:
    /// Takes the next points of the line: at most six, never none. With `needMoveTo` they begin a new
    /// sub-path, else they continue the present one. Returns true to end the run.
    using DrawCallback = std::function<bool(std::span<const PlotPoint> points, bool needMoveTo)>;
    /// Points x and y at the next chunk of pixels and returns its length; 0 says that there is no more. A
    /// chunk stays valid until the next call.
    using DataCallback = std::function<std::size_t(const float*& x, const float*& y)>;

    PolylineCompressor(DataCallback fetch, DrawCallback draw);

    /// Segments that lie wholly beyond one edge of (0, 0, width, height) are left out. Without it there is no
    /// edge.
    void setExtent(std::uint64_t width, std::uint64_t height);

    /// Reads all data once. NaN and infinities break the line.
    /// Kept: a lone point between two breaks is dropped, since a single point makes no visible line.
    void run();

  private:
    bool step(float x, float y, std::int32_t index, bool isLast);
    bool takeBlock(const float* x, const float* y, std::int32_t index);
    bool areApart(const float* x, const float* y) const;
    bool stepApart(const float* x, const float* y, std::int32_t index);
    std::span<const PlotPoint> buildOutputList();
    bool flushGroup();
    void finish();

    DataCallback m_fetch;
    DrawCallback m_draw;
    float m_width = static_cast<float>(std::numeric_limits<std::int64_t>::max());
    float m_height = static_cast<float>(std::numeric_limits<std::int64_t>::max());

    // First, least x, greatest x, least y, greatest y, last: the state of the group and its output list at
    // once.
    std::array<PlotPoint, 6> m_group{};
    PlotPoint m_pending{}; ///< a lone point after a gap, drawn only if a connected group follows
    int m_lastPixelX = 0;
    int m_lastPixelY = 0;
    unsigned m_previousOutcode = 0;
    unsigned m_changeFlags = 0; ///< 1: the column has changed since the group began, 2: the row has
    bool m_previousInvalid = false;
    bool m_segmentInvisible = false;
    bool m_groupNeedsMoveTo = true;
    bool m_firstPoint = true;
};
