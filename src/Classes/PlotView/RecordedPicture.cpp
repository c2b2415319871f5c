// A plot scene of its own, recorded; its curves rendered, and the whole encoded.
#include "Classes/PlotView/RecordedPicture.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/CurveRenderer.h"
#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/PlotView/PlotScene.h"
#include "Classes/PlotView/PngWriter.h"

#include <QImageWriter>
#include <QPainter>
#include <QSvgGenerator>

#include <algorithm>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t renderThreads = 4;
/// So many bytes of curves are rendered at once; larger pictures take one curve after the other.
constexpr std::uint64_t renderedAhead = 256ULL << 20;

std::unique_ptr<XAxis> makeAxis(const XAxisInfo* kind) {
    return kind != nullptr ? kind->makeAxis() : XAxisManager::sharedManager().createAxisWithTypeId(QString());
}

PlotPage pageOf(const PlotPictureOptions& options, PictureSize size) {
    PlotPage page;
    page.size = QSizeF(size.width, size.height);
    page.rooms = layoutTitles(
        plotContainer(page.size),
        {!options.plotAreaTitle.isEmpty(), !options.axisTitleX.isEmpty(), !options.axisTitleY.isEmpty()});
    page.plotAreaTitle = options.plotAreaTitle;
    page.axisTitleX = options.axisTitleX;
    page.axisTitleY = options.axisTitleY;
    return page;
}

void setUp(PlotScene& scene, const PlotPictureOptions& options, QSizeF bounds) {
    scene.setAxisX(makeAxis(options.axisX_type));
    scene.setAxisY(makeAxis(options.axisY_type));
    if (options.blackBackground)
        scene.updateStyles(PlotStyles::blackBackgroundStyles());
    // The titles have rooms of their own here, so the scene gets none.
    scene.options.axisMinX = options.axisMinX;
    scene.options.axisMaxX = options.axisMaxX;
    scene.options.axisMinY = options.axisMinY;
    scene.options.axisMaxY = options.axisMaxY;
    scene.options.showOriginX = options.showOriginX;
    scene.options.showOriginY = options.showOriginY;
    scene.options.showHorizontalLines = options.showHorizontalLines;
    scene.options.showVerticalLines = options.showVerticalLines;
    scene.setCurves(options.curves);
    scene.setBounds(bounds);
    scene.fitToData();
    if (options.ranges) {
        scene.axisX()->setRangeMinMax(options.ranges->first.minimum, options.ranges->first.maximum);
        scene.axisY()->setRangeMinMax(options.ranges->second.minimum, options.ranges->second.maximum);
    }
    scene.calculateMargins(); // the labels have changed with the ranges
}

void drawLegend(PlotCanvas& canvas, const PlotLayout& layout, const PlotPictureOptions& options) {
    const FontTextMeasure measure;
    const QPointF origin = LegendDrawing::placeInPlot(
        LegendDrawing::boxSize(options.curves, measure),
        {options.legendAlignment, options.legendMargins.width(), options.legendMargins.height()}, layout);
    LegendDrawing::drawLegend(canvas, origin, options.curves, measure);
}

} // namespace

/// One curve, for the axes of the picture.
struct RecordedPicture::CurveLayer {
    CurveSnapshot curve;
    XAxisHandle axisX;
    XAxisHandle axisY;
    QRectF plotRect;

    QImage render(double scale, const std::stop_token& stop) const {
        QImage image = CurveRenderer::renderImage(curve, *axisX, *axisY, scale, stop);
        if (image.isNull() && curve.rows() > 0 && !stop.stop_requested())
            throw std::bad_alloc();
        return image;
    }

    void drawAsVector(PlotCanvas& canvas, const std::stop_token& stop) const {
        canvas.group(plotRect, PlotScene::curveOpacity, [this, stop](QPainter& painter) {
            CurveRenderer::paintVector(painter, curve, *axisX, *axisY, stop);
        });
    }
};

RecordedPicture::RecordedPicture(const PlotPictureOptions& options, PictureSize size, PictureFormat format)
    : m_page(pageOf(options, size)), m_size(size), m_format(format) {
    PlotScene scene;
    setUp(scene, options, m_page.rooms.plotView.size());
    m_page.underPlot = scene.layout().marginBottom;
    m_page.styles = scene.styles();

    RecordedCanvas canvas;
    std::optional<std::size_t> firstCurve;
    const XAxisHandle axisX(scene.axisX()->copy());
    const XAxisHandle axisY(scene.axisY()->copy());
    scene.setCurvePainter([&](PlotCanvas&, const XCurve& curve) {
        firstCurve = firstCurve.value_or(canvas.stepCount());
        m_curves.push_back(std::make_shared<CurveLayer>(
            CurveLayer{curve.snapshot(), axisX, axisY, scene.layout().plotRect()}));
    });
    // A label at the very edge may reach out of the plot's own area: paper has room for it.
    scene.draw(canvas, m_page.aroundPlot(),
               isVectorFormat(format) ? PlotScene::CurveOutput::Vector : PlotScene::CurveOutput::Images);
    if (options.showLegend)
        drawLegend(canvas, scene.layout(), options);
    m_overCurves = canvas.takeSteps();
    const auto under = m_overCurves.begin() + static_cast<std::ptrdiff_t>(firstCurve.value_or(0));
    m_underCurves.assign(std::make_move_iterator(m_overCurves.begin()), std::make_move_iterator(under));
    m_overCurves.erase(m_overCurves.begin(), under);
}

RecordedPicture RecordedPicture::scaled(double scale) const {
    RecordedPicture copy = *this;
    copy.m_size.scale = scale;
    return copy;
}

/// `rendered` has an image or null a curve; without any, curves go in as vectors.
void RecordedPicture::drawPlot(PlotCanvas& plot, const std::vector<QImage>& rendered,
                               const std::stop_token& stop) const {
    for (const RecordedCanvas::Step& step : m_underCurves)
        step(plot);
    for (std::size_t i = 0; i < m_curves.size() && !stop.stop_requested(); ++i) {
        const CurveLayer& layer = *m_curves[i];
        if (layer.plotRect.isEmpty())
            continue;
        plot.save();
        plot.clip(layer.plotRect);
        if (rendered.empty())
            layer.drawAsVector(plot, stop);
        else
            plot.image(layer.plotRect, rendered[i].isNull() ? layer.render(m_size.scale, stop) : rendered[i],
                       PlotScene::curveOpacity);
        plot.restore();
    }
    for (const RecordedCanvas::Step& step : m_overCurves)
        step(plot);
}

std::vector<QImage> RecordedPicture::renderAhead(const std::stop_token& stop) const {
    std::vector<QImage> rendered(m_curves.size());
    const QSize size = pixels();
    const std::uint64_t bytes = 4ULL * static_cast<std::uint64_t>(size.width()) *
                                static_cast<std::uint64_t>(size.height()) * m_curves.size();
    if (m_curves.size() < 2 || bytes > renderedAhead)
        return rendered;
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < m_curves.size(); i = next++)
                rendered[i] = m_curves[i]->render(m_size.scale, stop);
        } catch (const std::exception&) {
            // What is missing is rendered once more, where its failure is told.
            next = m_curves.size();
        }
    };
    std::vector<std::jthread> threads;
    try {
        for (std::size_t i = 1; i < std::min(renderThreads, m_curves.size()); ++i)
            threads.emplace_back(work);
    } catch (const std::system_error&) {
        // The threads that there are do the work.
    }
    work();
    threads.clear(); // which joins them
    return rendered;
}

QImage RecordedPicture::draw(const std::stop_token& stop) const {
    const QSize size = pixels();
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(m_size.scale);
    QPainter painter(&image);
    if (m_size.scale < 1) // which painters do not take from their device
        painter.scale(m_size.scale, m_size.scale);
    try {
        const std::vector<QImage> rendered = renderAhead(stop);
        paintPage(painter, m_page, PageOutput::Pixels,
                  [&](PlotCanvas& plot) { drawPlot(plot, rendered, stop); });
    } catch (const std::bad_alloc&) {
        return {};
    }
    return stop.stop_requested() ? QImage() : image;
}

void RecordedPicture::paintVector(QPainter& painter, const std::stop_token& stop) const {
    paintPage(painter, m_page, PageOutput::Vector, [&](PlotCanvas& plot) { drawPlot(plot, {}, stop); });
}

bool RecordedPicture::writeSvg(QIODevice& device, const std::stop_token& stop) const {
    QSvgGenerator generator;
    generator.setOutputDevice(&device);
    generator.setResolution(72);
    generator.setSize(m_page.size.toSize());
    generator.setViewBox(QRectF(QPointF(0, 0), m_page.size));
    generator.setTitle(m_page.plotAreaTitle);
    QPainter painter;
    if (!painter.begin(&generator))
        return false;
    paintVector(painter, stop);
    return painter.end();
}

std::optional<QString> RecordedPicture::encode(QIODevice& device, const std::stop_token& stop) const {
    const auto resultOf = [&](bool done) {
        return done ? std::nullopt : std::optional(device.errorString());
    };
    if (m_format == PictureFormat::Pdf)
        return resultOf(writePdfPage(device, m_page.size, m_page.plotAreaTitle,
                                     [&](QPainter& painter) { paintVector(painter, stop); }));
    if (m_format == PictureFormat::Svg)
        return resultOf(writeSvg(device, stop));
    const QImage image = draw(stop);
    if (image.isNull())
        return u"There is no memory for a picture of this size."_s;
    if (m_format == PictureFormat::Png)
        return writePng(image, device, stop);
    QImageWriter writer(&device, "jpeg");
    writer.setQuality(100);
    return writer.write(image) ? std::nullopt : std::optional(writer.errorString());
}
