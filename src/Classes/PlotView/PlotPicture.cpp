#include "Classes/PlotView/PlotPicture.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/PlotScene.h"
#include "Classes/PlotView/TitleLayout.h"
#include "Core/ClampToInt.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/WholeWrite.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// A curve may change while it is rendered; a source that never rests must not keep a picture from being made.
constexpr int renderRounds = 10;

std::unique_ptr<XAxis> makeAxis(const XAxisInfo* kind) {
    return kind != nullptr ? kind->makeAxis() : XAxisManager::sharedManager().createAxisWithTypeId(QString());
}

TitleLayout layoutOf(const PlotPictureOptions& options, PictureSize size) {
    return layoutTitles(
        plotContainer(QSizeF(size.width, size.height)),
        {!options.plotAreaTitle.isEmpty(), !options.axisTitleX.isEmpty(), !options.axisTitleY.isEmpty()});
}

void setUp(PlotScene& scene, const PlotPictureOptions& options, const TitleLayout& rooms, double scale) {
    scene.setRenderGrace(std::chrono::milliseconds(0)); // nothing will replace a task
    scene.setAxisX(makeAxis(options.axisX_type));
    scene.setAxisY(makeAxis(options.axisY_type));
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
    scene.setDevicePixelRatio(scale);
    scene.setBounds(rooms.plotView.size());
    scene.fitToData();
    scene.calculateMargins(); // the labels have changed with the ranges
}

void drawLegend(PlotCanvas& canvas, const PlotLayout& layout, const PlotPictureOptions& options,
                const TextMeasure& measure) {
    const QPointF origin = LegendDrawing::placeInPlot(
        LegendDrawing::boxSize(options.curves, measure),
        {options.legendAlignment, options.legendMargins.width(), options.legendMargins.height()}, layout);
    LegendDrawing::drawLegend(canvas, origin, options.curves, measure);
}

void paintPicture(QPainter& painter, PlotScene& scene, const PlotPictureOptions& options,
                  const TitleLayout& rooms, PictureSize size, PlotScene::CurveOutput curves) {
    const auto output = curves == PlotScene::CurveOutput::Vector ? PainterCanvas::Output::Vector
                                                                 : PainterCanvas::Output::Pixels;
    PainterCanvas page(painter, size.height, output);
    const PlotStyles& styles = scene.styles();
    page.fillRect(QRectF(0, 0, size.width, size.height), styles.color(u"BackgroundColor"_s));

    painter.save();
    painter.translate(rooms.plotView.left(), size.height - rooms.plotView.top() - rooms.plotView.height());
    PainterCanvas plot(painter, rooms.plotView.height(), output);
    // A label at the very edge may reach out of the plot's own area: paper has room for it.
    scene.draw(plot, QRectF(-rooms.plotView.topLeft(), QSizeF(size.width, size.height)), curves);
    const FontTextMeasure measure;
    if (options.showLegend)
        drawLegend(plot, scene.layout(), options, measure);
    painter.restore();

    PlotDrawing::drawTitleInRoom(page, rooms.plotAreaTitle, options.plotAreaTitle, TextRole::PlotTitle, false,
                                 styles, measure);
    PlotDrawing::drawTitleInRoom(page, rooms.axisTitleX, options.axisTitleX, TextRole::AxisTitle, false,
                                 styles, measure);
    // Along the plot itself, not along the labels under it.
    PlotDrawing::drawTitleInRoom(page, rooms.axisTitleY.adjusted(0, scene.layout().marginBottom, 0, 0),
                                 options.axisTitleY, TextRole::AxisTitle, true, styles, measure);
}

void paintVector(QPainter& painter, const PlotPictureOptions& options, PictureSize size) {
    const TitleLayout rooms = layoutOf(options, size);
    PlotScene scene;
    setUp(scene, options, rooms, 1);
    paintPicture(painter, scene, options, rooms, size, PlotScene::CurveOutput::Vector);
}

bool writePdf(QIODevice& device, const PlotPictureOptions& options, PictureSize size) {
    QPdfWriter writer(&device);
    writer.setPageSize(
        QPageSize(QSizeF(size.width, size.height), QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(options.plotAreaTitle);
    constexpr int resolution = 720; // ten units a point: glyphs are placed on whole units
    writer.setResolution(resolution);
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    painter.scale(resolution / 72.0, resolution / 72.0);
    paintVector(painter, options, size);
    return painter.end();
}

bool writeSvg(QIODevice& device, const PlotPictureOptions& options, PictureSize size) {
    QSvgGenerator generator;
    generator.setOutputDevice(&device);
    generator.setResolution(72);
    generator.setSize(QSize(size.width, size.height));
    generator.setViewBox(QRect(0, 0, size.width, size.height));
    generator.setTitle(options.plotAreaTitle);
    QPainter painter;
    if (!painter.begin(&generator))
        return false;
    paintVector(painter, options, size);
    return painter.end();
}

std::optional<QString> writePixels(QIODevice& device, const char* format, const PlotPictureOptions& options,
                                   PictureSize size) {
    const QImage image = drawPicture(options, size);
    if (image.isNull())
        return u"There is no memory for a picture of this size."_s;
    QImageWriter writer(&device, format);
    if (qstrcmp(format, "jpeg") == 0)
        writer.setQuality(100);
    return writer.write(image) ? std::nullopt : std::optional(writer.errorString());
}

std::optional<QString> encodePicture(QBuffer& buffer, PictureFormat format, const PlotPictureOptions& options,
                                     PictureSize size) {
    switch (format) {
    case PictureFormat::Png:
        return writePixels(buffer, "png", options, size);
    case PictureFormat::Jpeg:
        return writePixels(buffer, "jpeg", options, size);
    case PictureFormat::Pdf:
        return writePdf(buffer, options, size) ? std::nullopt : std::optional(buffer.errorString());
    case PictureFormat::Svg:
        return writeSvg(buffer, options, size) ? std::nullopt : std::optional(buffer.errorString());
    }
    return u"Unknown picture format."_s;
}

} // namespace

std::optional<PictureFormat> pictureFormatOfPath(const QString& path) {
    static const std::array<std::pair<QLatin1StringView, PictureFormat>, 5> endings{
        {{"png"_L1, PictureFormat::Png},
         {"jpg"_L1, PictureFormat::Jpeg},
         {"jpeg"_L1, PictureFormat::Jpeg},
         {"pdf"_L1, PictureFormat::Pdf},
         {"svg"_L1, PictureFormat::Svg}}};
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const auto& [ending, format] : endings)
        if (suffix == ending)
            return format;
    return std::nullopt;
}

QImage drawPicture(const PlotPictureOptions& options, PictureSize size) {
    QImage image(clampToInt(std::round(size.width * size.scale)),
                 clampToInt(std::round(size.height * size.scale)), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(size.scale);
    image.fill(Qt::white);

    const TitleLayout rooms = layoutOf(options, size);
    PlotScene scene;
    setUp(scene, options, rooms, size.scale);
    for (int round = 0; round < renderRounds && !scene.requestRenderings(); ++round)
        MainThread::runUntil([&scene] { return scene.renderTaskCount() == 0; });

    QPainter painter(&image);
    paintPicture(painter, scene, options, rooms, size, PlotScene::CurveOutput::Images);
    return image;
}

std::optional<QString> writePicture(QIODevice& device, PictureFormat format,
                                    const PlotPictureOptions& options, PictureSize size) {
    // Into memory first: neither painters nor encoders tell of a device that takes no more.
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (std::optional<QString> failure = encodePicture(buffer, format, options, size))
        return failure;
    if (!writeWhole(device, buffer.data().constData(), buffer.size()))
        return device.errorString();
    return std::nullopt;
}

std::optional<QString> writePicture(const QString& path, const PlotPictureOptions& options,
                                    PictureSize size) {
    const std::optional<PictureFormat> format = pictureFormatOfPath(path);
    if (!format)
        return u"The file's ending is none of png, jpg, pdf and svg."_s;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    if (std::optional<QString> failure = writePicture(file, *format, options, size))
        return failure;
    return file.commit() ? std::nullopt : std::optional(file.errorString());
}
