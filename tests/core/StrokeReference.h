// A slow stroker to compare with: every segment and bevel tested at 64 places of every pixel, the union kept
// as bits.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace reference {

struct Point {
    double x;
    double y;
};
using Polyline = std::vector<Point>;

/// Pixels as in a picture, y upwards as in a plot.
class Stroke {
  public:
    Stroke(int width, int height)
        : m_width(width), m_height(height), m_places(static_cast<std::size_t>(width * height)) {}

    /// Adds a line with bevel joins and butt caps; points that coincide with the one before are ignored.
    void add(const Polyline& line, double lineWidth) {
        Polyline points;
        std::unique_copy(line.begin(), line.end(), std::back_inserter(points),
                         [](Point a, Point b) { return a.x == b.x && a.y == b.y; });
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const Point from = points[i], to = points[i + 1];
            const Point n = normal(from, to, lineWidth);
            addConvex({{from.x - n.x, from.y - n.y},
                       {to.x - n.x, to.y - n.y},
                       {to.x + n.x, to.y + n.y},
                       {from.x + n.x, from.y + n.y}});
            if (i + 2 == points.size())
                break;
            const Point next = normal(to, points[i + 2], lineWidth);
            if (n.x * next.y - n.y * next.x > 0)
                addConvex({to, {to.x - n.x, to.y - n.y}, {to.x - next.x, to.y - next.y}});
            else
                addConvex({to, {to.x + next.x, to.y + next.y}, {to.x + n.x, to.y + n.y}});
        }
    }

    /// Share of the pixel that is covered, row 0 at the top.
    double coverage(int column, int row) const {
        return std::popcount(m_places[static_cast<std::size_t>(row * m_width + column)]) / 64.0;
    }

  private:
    static Point normal(Point from, Point to, double lineWidth) {
        const double scale = lineWidth / 2 / std::hypot(to.x - from.x, to.y - from.y);
        return {-(to.y - from.y) * scale, (to.x - from.x) * scale};
    }

    /// Corners counter-clockwise.
    void addConvex(const Polyline& corners) {
        const auto [left, right] =
            std::minmax_element(corners.begin(), corners.end(), [](Point a, Point b) { return a.x < b.x; });
        const auto [low, high] =
            std::minmax_element(corners.begin(), corners.end(), [](Point a, Point b) { return a.y < b.y; });
        const auto bound = [](double value, int extent) {
            return static_cast<int>(std::clamp<double>(value, 0, extent));
        };
        for (int row = bound(m_height - high->y, m_height); row < bound(m_height - low->y + 1, m_height);
             ++row) {
            for (int column = bound(left->x, m_width); column < bound(right->x + 1, m_width); ++column) {
                std::uint64_t& places = m_places[static_cast<std::size_t>(row * m_width + column)];
                for (unsigned place = 0; place < 64; ++place) {
                    if (isInside(corners,
                                 {column + (place % 8 + 0.5) / 8, m_height - row - (place / 8 + 0.5) / 8}))
                        places |= std::uint64_t{1} << place;
                }
            }
        }
    }

    static bool isInside(const Polyline& corners, Point p) {
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point a = corners[i], b = corners[(i + 1) % corners.size()];
            if ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) < 0)
                return false;
        }
        return true;
    }

    int m_width;
    int m_height;
    std::vector<std::uint64_t> m_places;
};

} // namespace reference
