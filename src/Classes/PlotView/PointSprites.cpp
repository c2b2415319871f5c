// Masks of point shapes, their stamping, and the shapes too large for that.
#include "Classes/PlotView/PointSprites.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

constexpr double opaque = 0.999;
constexpr std::size_t maxOpacities = 10000;
constexpr int maxReach = 128; ///< larger shapes are few on a screen; they are drawn by their path
constexpr std::size_t maxSpriteBytes = 16U << 20U;

double halfSize(std::int32_t size4) {
    return size4 * 0.25;
}

QColor colorWithOpacity(const RgbaColor& color, double opacity) {
    const auto unit = [](double value) { return static_cast<float>(value > 0 ? std::min(value, 1.0) : 0.0); };
    return QColor::fromRgbF(unit(color.red), unit(color.green), unit(color.blue), unit(opacity));
}

} // namespace

std::vector<double> overlapOpacities(float colorAlpha) {
    std::vector<double> opacities;
    const double alpha = std::min<double>(colorAlpha, 1);
    if (!(alpha > 0))
        return opacities;
    double stacked = 0;
    while (stacked < opaque && opacities.size() < maxOpacities) {
        stacked = stacked * (1 - alpha) + alpha;
        opacities.push_back(stacked);
    }
    return opacities;
}

double OverlapRamp::opacityFor(std::int32_t count) {
    if (count != m_lastCount) {
        m_opacity = m_opacities[std::min(static_cast<std::size_t>(count), m_opacities.size() - 1)];
        m_lastCount = static_cast<std::uint8_t>(count);
    }
    return m_opacity;
}

QPen outlinePen(const RgbaColor& color, double opacity, double width) {
    return {colorWithOpacity(color, opacity), width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin};
}

void drawShape(QPainter& painter, const XGraphPointDescription& shape, const TickCompressor::Entry& entry,
               double height, const QPen& pen) {
    QPainterPath path;
    shape.drawCallback()(path, static_cast<float>(entry.key.x), static_cast<float>(height - entry.key.y),
                         static_cast<float>(halfSize(entry.key.size4)));
    if (shape.isFilled())
        painter.fillPath(path, pen.color());
    else
        painter.strokePath(path, pen);
}

PointSprites::PointSprites(QImage& image, const XGraphPointDescription& shape, const RgbaColor& color,
                           double lineWidth)
    : m_image(image), m_grid{reinterpret_cast<std::uint32_t*>(image.bits()), image.bytesPerLine() / 4},
      m_shape(shape), m_color(color),
      // Beyond this the width makes no difference to a picture of this size.
      m_lineWidth(std::clamp(lineWidth, 1.0, 8.0 * (image.width() + image.height()))) {}

void PointSprites::draw(const TickCompressor::Entry& entry, double opacity) {
    const double size = halfSize(entry.key.size4);
    if (!(size > 0))
        return;
    const double reach = size + (m_shape.isFilled() ? 0 : m_lineWidth) + 1;
    if (reach <= maxReach) {
        stamp(spriteOf(entry.key.size4), colorsOf(opacity), entry.key.x, m_image.height() - entry.key.y);
        return;
    }
    QPainter painter(&m_image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawShape(painter, m_shape, entry, m_image.height(), outlinePen(m_color, opacity, m_lineWidth));
}

const CoverageRamp& PointSprites::colorsOf(double opacity) {
    const auto [found, isNew] = m_colors.try_emplace(opacity);
    if (isNew)
        found->second = coverageRamp(m_color.red, m_color.green, m_color.blue, opacity);
    return found->second;
}

const PointSprites::Sprite& PointSprites::spriteOf(std::int32_t size4) {
    const auto [found, isNew] = m_sprites.try_emplace(size4);
    if (!isNew)
        return found->second;
    Sprite sprite;
    sprite.reach = static_cast<int>(std::ceil(halfSize(size4) + (m_shape.isFilled() ? 0 : m_lineWidth))) + 1;
    const int side = 2 * sprite.reach;
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        drawShape(painter, m_shape, {{sprite.reach, sprite.reach, size4}, 1}, side,
                  outlinePen(RgbaColor{0, 0, 0, 1}, 1, m_lineWidth));
    }
    for (int y = 0; y < side; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        int previous = 0;
        for (int x = 0; x < side; ++x) {
            const int coverage = qAlpha(row[x]);
            if (coverage == 0) {
                previous = 0;
                continue;
            }
            const bool isFull = coverage == 255;
            if (previous == 0 || isFull != (previous == 255))
                sprite.runs.push_back({x, y, 0, isFull});
            ++sprite.runs.back().length;
            sprite.coverage.push_back(static_cast<std::uint8_t>(coverage));
            previous = coverage;
        }
    }
    m_spriteBytes += sprite.coverage.size();
    if (m_spriteBytes > maxSpriteBytes) { // a table of ever new sizes
        m_spriteBytes = sprite.coverage.size();
        m_sprites.clear();
        return m_sprites.emplace(size4, std::move(sprite)).first->second;
    }
    return found->second = std::move(sprite);
}

void PointSprites::stamp(const Sprite& sprite, const CoverageRamp& colors, int centreX, int centreY) {
    const int left = centreX - sprite.reach;
    const int top = centreY - sprite.reach;
    const std::uint8_t* coverage = sprite.coverage.data();
    for (const Sprite::Run& run : sprite.runs) {
        const std::uint8_t* const ofRun = std::exchange(coverage, coverage + run.length);
        const int y = top + run.y;
        if (y < 0 || y >= m_image.height())
            continue;
        std::uint32_t* const pixels = m_grid.pixels + y * m_grid.stride + left + run.x;
        const int end = std::min(run.length, m_image.width() - left - run.x);
        const int begin = std::max(0, -left - run.x);
        if (!run.isFull) {
            for (int i = begin; i < end; ++i)
                pixels[i] = composed(colors[ofRun[i]], pixels[i]);
        } else if (colors[255] >> 24U == 255) {
            for (int i = begin; i < end; ++i)
                pixels[i] = colors[255];
        } else {
            for (int i = begin; i < end; ++i)
                pixels[i] = composed(colors[255], pixels[i]);
        }
    }
}
