// Finished pictures: their sizes, formats and what is on them.
#include "Classes/PlotView/PlotPicture.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/GraphViewController/ImageExport.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QSvgRenderer>

#include <gtest/gtest.h>

namespace {

// A thick line at y = 5, on a plot without marks and lines.
PlotPictureOptions levelLine() {
    const XCurveHandle curve = XCurve::make();
    curve->setDataSource(std::make_shared<support::TableSource>(support::makeTable({{0, 20}, {5, 5}})));
    curve->setX_data_index(1);
    curve->setY_data_index(2);
    curve->setColor({1, 0, 0, 1});
    curve->setLineWidth(8);
    PlotPictureOptions options;
    options.axisX_type = options.axisY_type =
        XAxisManager::sharedManager().axisInfoWithId(QStringLiteral("zen"));
    options.axisMinX = 5;
    options.axisMaxX = 15;
    options.showOriginX = options.showOriginY = options.showHorizontalLines = options.showVerticalLines =
        false;
    options.curves = {curve};
    return options;
}

QByteArray written(PictureFormat format, const PlotPictureOptions& options, PictureSize size) {
    QBuffer buffer;
    EXPECT_TRUE(buffer.open(QIODevice::WriteOnly));
    EXPECT_EQ(writePicture(buffer, format, options, size), std::nullopt);
    return buffer.data();
}

TEST(PlotPicture, drawsTheCurveAtNineTenthsWithinItsRooms) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        const QImage image = drawPicture(levelLine(), {220, 116, scale});
        ASSERT_EQ(image.size(), QSize(qRound(220 * scale), qRound(116 * scale)));
        const auto at = [&](double x, double y) {
            return image.pixelColor(qRound(x * scale), qRound(y * scale));
        };
        EXPECT_NEAR(at(110, 58).green(), 25, 1) << scale; // red at 0.9 over white, in the middle of the plot
        EXPECT_EQ(at(110, 58).red(), 255) << scale;
        EXPECT_EQ(at(3, 58), QColor(Qt::white)) << scale;   // the inset at the left
        EXPECT_EQ(at(214, 58), QColor(Qt::white)) << scale; // and at the right
    }
    // The titles take their rooms, and the line moves: from 58 of 116 down to 8 + 38 + (100 - 58) / 2 = 67.
    PlotPictureOptions titled = levelLine();
    titled.plotAreaTitle = QStringLiteral("Plot");
    titled.axisTitleX = QStringLiteral("x");
    titled.axisTitleY = QStringLiteral("y");
    const QImage image = drawPicture(titled, {220, 116, 1});
    EXPECT_NEAR(image.pixelColor(110, 67).green(), 25, 1);
    EXPECT_EQ(image.pixelColor(27, 67), QColor(Qt::white)); // the room of the y title
}

TEST(PlotPicture, isWrittenInEachFormat) {
    PlotPictureOptions options = levelLine();
    options.plotAreaTitle = QStringLiteral("Ein Titel");
    EXPECT_EQ(QImage::fromData(written(PictureFormat::Png, options, {300, 200, 1.5}), "PNG").size(),
              QSize(450, 300));
    EXPECT_EQ(QImage::fromData(written(PictureFormat::Jpeg, options, {300, 200, 2}), "JPEG").size(),
              QSize(600, 400));
    const QByteArray pdf = written(PictureFormat::Pdf, options, {300, 200, 1});
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    EXPECT_TRUE(pdf.contains("/MediaBox [0 0 300.000000 200.000000]"));
    EXPECT_FALSE(pdf.contains("/Subtype /Image")); // all strokes and fills
    const QByteArray svg = written(PictureFormat::Svg, options, {300, 200, 1});
    EXPECT_TRUE(svg.contains("viewBox=\"0 0 300 200\""));
    EXPECT_TRUE(svg.contains("opacity=\"0.9\""));
    EXPECT_FALSE(svg.contains("<image"));
    // The line goes on beyond its fixed range, and its writer has no clips.
    QImage drawn(300, 200, QImage::Format_RGB32);
    QPainter painter(&drawn);
    QSvgRenderer(svg).render(&painter);
    painter.end();
    EXPECT_NEAR(drawn.pixelColor(150, 119).green(), 25, 1);
    EXPECT_EQ(drawn.pixelColor(6, 119), QColor(Qt::white));
    EXPECT_EQ(drawn.pixelColor(290, 119), QColor(Qt::white));

    const QImage once = drawPicture(options, {300, 200, 1});
    EXPECT_EQ(drawPicture(options, {300, 200, 1}), once); // pictures repeat
}

TEST(PlotPicture, choosesTheFormatByEndingAndReportsFailures) {
    struct Row {
        const char* path;
        std::optional<PictureFormat> format;
    };
    const Row rows[] = {{"a.png", PictureFormat::Png},
                        {"a.b.JPG", PictureFormat::Jpeg},
                        {"a.jpeg", PictureFormat::Jpeg},
                        {"a.pdf", PictureFormat::Pdf},
                        {"a.svg", PictureFormat::Svg},
                        {"a.gif", std::nullopt},
                        {"a", std::nullopt}};
    for (const Row& row : rows)
        EXPECT_EQ(pictureFormatOfPath(QString::fromUtf8(row.path)), row.format) << row.path;

    const support::ScratchFolder folder;
    EXPECT_EQ(writePicture(folder.path(QStringLiteral("p.svg")), levelLine(), {}), std::nullopt);
    EXPECT_TRUE(writePicture(folder.path(QStringLiteral("none/p.png")), levelLine(), {}).has_value());
    EXPECT_TRUE(writePicture(folder.path(QStringLiteral("p.gif")), levelLine(), {}).has_value());
    EXPECT_EQ(folder.fileNames(), QStringList(QStringLiteral("p.svg")));
}

TEST(ImageExport, writesFilesAndTheClipboard) {
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(QColor(200, 40, 10));
    const support::ScratchFolder folder;
    const QString jpeg = folder.path(QStringLiteral("a.png")), png = folder.path(QStringLiteral("b.png"));
    EXPECT_TRUE(ImageExport::saveAsJPEG(image, jpeg).isWritten()); // whatever the ending says
    EXPECT_TRUE(support::ScratchFolder::read(jpeg).startsWith("\xff\xd8"));
    EXPECT_TRUE(ImageExport::saveAsPNG(image, png).isWritten());
    EXPECT_EQ(QImage(png).convertToFormat(QImage::Format_RGB32), image);
    EXPECT_EQ(ImageExport::saveAsPNG(image, jpeg).outcome, PlacedFile::Result::Outcome::NameTaken);
    EXPECT_FALSE(ImageExport::saveAsPNG(image, folder.path(QStringLiteral("none/c.png"))).isWritten());

    EXPECT_TRUE(ImageExport::copyToClipboard(image));
    const QMimeData* contents = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(contents->formats().value(0), QStringLiteral("image/png"));
    EXPECT_EQ(QImage::fromData(contents->data(QStringLiteral("image/png"))).size(), image.size());
}

} // namespace
