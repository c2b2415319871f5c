// What strokes cover of each pixel: summed, searched for what is full, painted.
#pragma once

#include "Core/EdgeSums.h"
#include "Core/FullPixels.h"
#include "Core/PremultipliedColor.h"
#include "Core/StripSums.h"

#include <cstdint>

/// Coverages of outlines and strips add up; a sum of 1 and more is full. Units are pixels, y upwards from the
/// lower edge of the picture.
class CoverageSums {
  public:
    /// `width` and `height` in pixels, not negative.
    CoverageSums(int width, int height) : m_height(height), m_edges(width, height), m_strips(width, height) {}

    /// See EdgeSums. The edges of an outline, together, never take away more than they added.
    void addEdge(StrokePoint from, StrokePoint to, PixelRange columns) { m_edges.addEdge(from, to, columns); }
    /// See StripSums.
    bool addStrip(PixelRange columns, double low, double high, double slope) {
        return m_strips.add(columns, low, high, slope);
    }

    /// How many columns of edges and of strips were added, ever.
    std::int64_t additions() const { return m_edges.additions() + m_strips.additions(); }

    /// Looks which pixels became full.
    void findFull(FullPixels& pixels) const;

    /// Paints all over `image` and forgets it.
    void paint(PixelGrid image, const CoverageRamp& colors);

  private:
    void findFullOfStack(FullPixels& pixels, int stack) const;
    void paintColumn(int column, PixelGrid image, const CoverageRamp& colors) const;

    int m_height;
    EdgeSums m_edges;
    StripSums m_strips;
};
