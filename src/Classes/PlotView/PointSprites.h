// Paints point shapes into an image: each size is rasterized once and stamped from then on.
#pragma once

#include "Classes/PlotView/XGraphPointDescription.h"
#include "Core/PremultipliedColor.h"
#include "Core/RgbaColor.h"
#include "Core/TickCompressor.h"

#include <QImage>

#include <cstdint>
#include <unordered_map>
#include <vector>

class QPainter;
class QPen;

/// The opacities of stacked shapes: entry k is that of k + 1 shapes of opacity `colorAlpha`, up to 0.999. At
/// most 10,000 entries. Empty when `colorAlpha` is not positive.
std::vector<double> overlapOpacities(float colorAlpha);

/// Chooses the opacity of each shape from the number of its hits.
class OverlapRamp {
  public:
    explicit OverlapRamp(float colorAlpha) : m_opacities(overlapOpacities(colorAlpha)) {}

    bool isEmpty() const { return m_opacities.empty(); }
    /// The opacity of a shape that was hit `count` times, 1 or more; depends on the calls before it.
    /// Kept: the count is the index, so a single hit is painted like two stacked shapes.
    /// Kept: the last count is remembered by its low 8 bits, so a count after one that is greater by a
    /// multiple of 256 is painted in the other's opacity.
    double opacityFor(std::int32_t count);

  private:
    std::vector<double> m_opacities;
    double m_opacity = 0;
    std::uint8_t m_lastCount = 0;
};

/// The pen of a shape's outline in `color`; `width` in the painter's units, not negative.
QPen outlinePen(const RgbaColor& color, double opacity, double width);
/// Appends nothing but `entry`'s outline to the painter's picture, filled or stroked; y downwards, `height`
/// is y = 0.
void drawShape(QPainter& painter, const XGraphPointDescription& shape, const TickCompressor::Entry& entry,
               double height, const QPen& pen);

/// Stamps one kind of shape in one colour into `image` (ARGB32 premultiplied), which outlives this.
class PointSprites {
  public:
    /// `lineWidth` of stroked outlines in pixels; less than one pixel is drawn as one.
    PointSprites(QImage& image, const XGraphPointDescription& shape, const RgbaColor& color,
                 double lineWidth);

    void draw(const TickCompressor::Entry& entry, double opacity);

  private:
    /// Coverage of a square around the centre, which lies on a corner of pixels.
    struct Sprite {
        /// Neighbouring pixels of one row, all of them fully covered, or all of them partly.
        struct Run {
            int x;
            int y;
            int length;
            bool isFull;
        };
        int reach = 0; ///< half the side
        std::vector<Run> runs;
        std::vector<std::uint8_t> coverage; ///< of all runs, one after the other
    };

    const Sprite& spriteOf(std::int32_t size4);
    const CoverageRamp& colorsOf(double opacity);
    void stamp(const Sprite& sprite, const CoverageRamp& colors, int centreX, int centreY);

    QImage& m_image;
    PixelGrid m_grid;
    const XGraphPointDescription& m_shape;
    RgbaColor m_color;
    double m_lineWidth;
    std::unordered_map<std::int32_t, Sprite> m_sprites; ///< by size4
    std::size_t m_spriteBytes = 0;
    std::unordered_map<double, CoverageRamp>
        m_colors; ///< by opacity; as many as the overlap ramp has entries
};
