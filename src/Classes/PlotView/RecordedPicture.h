// All that a picture of a plot shows, as a value: taken from the document in one go, drawn later and
// elsewhere.
#pragma once

#include "Classes/PlotView/PlotPage.h"
#include "Classes/PlotView/PlotPicture.h"
#include "Classes/PlotView/RecordedCanvas.h"

#include <memory>
#include <stop_token>
#include <vector>

/// Made on the main thread, which takes no longer than laying out a plot; the curves are rendered by whoever
/// draws it, on any thread. Copies are cheap next to a picture.
class RecordedPicture {
  public:
    RecordedPicture(const PlotPictureOptions& options, PictureSize size, PictureFormat format);

    PictureFormat format() const { return m_format; }
    QSizeF points() const { return m_page.size; }
    double scale() const { return m_size.scale; } ///< device pixels a point
    QSize pixels() const { return pixelsOf(m_size); }
    /// The same picture with other pixels.
    RecordedPicture scaled(double scale) const;

    /// In pixels. Null when it was stopped, or when there is no memory for so many.
    QImage draw(const std::stop_token& stop = {}) const;
    /// In its format. Returns the reason of a failure; after a stop there is no telling what was written.
    std::optional<QString> encode(QIODevice& device, const std::stop_token& stop = {}) const;

  private:
    struct CurveLayer;

    void drawPlot(PlotCanvas& plot, const std::vector<QImage>& rendered, const std::stop_token& stop) const;
    std::vector<QImage> renderAhead(const std::stop_token& stop) const;
    void paintVector(QPainter& painter, const std::stop_token& stop) const;
    bool writeSvg(QIODevice& device, const std::stop_token& stop) const;

    PlotPage m_page;
    PictureSize m_size;
    PictureFormat m_format;
    std::vector<RecordedCanvas::Step> m_underCurves; ///< in the plot's room
    std::vector<std::shared_ptr<const CurveLayer>> m_curves;
    std::vector<RecordedCanvas::Step> m_overCurves;
};
