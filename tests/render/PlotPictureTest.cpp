// Finished pictures: their sizes, formats and what is on them.
#include "Classes/PlotView/PlotPicture.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/GraphViewController/ImageExport.h"
#include "Classes/PlotView/PngWriter.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QSvgRenderer>

#include <gtest/gtest.h>

#include <random>

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
    const QImage drawnLarge = drawPicture(options, {300, 200, 1.5});
    const QImage png = QImage::fromData(written(PictureFormat::Png, options, {300, 200, 1.5}), "PNG");
    EXPECT_EQ(png.size(), QSize(450, 300));
    EXPECT_EQ(png.convertToFormat(QImage::Format_RGB32), drawnLarge);
    EXPECT_EQ(png.dotsPerMeterX(), drawnLarge.dotsPerMeterX());
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

/// Takes `room` bytes; then takes no more, or asks for a stop.
class EndingDevice : public QBuffer {
  public:
    EndingDevice(qint64 room, std::stop_source* stop) : m_room(room), m_stop(stop) { open(WriteOnly); }

  protected:
    qint64 writeData(const char* bytes, qint64 size) override {
        if (this->size() + size > m_room && m_stop == nullptr)
            return -1;
        if (this->size() + size > m_room)
            m_stop->request_stop();
        return QBuffer::writeData(bytes, size);
    }

  private:
    qint64 m_room;
    std::stop_source* m_stop;
};

// What an encoder does not give back, AddressSanitizer finds when the tests have run.
TEST(PngWriter, endsEarlyAndCleanlyAtAFailureAndAtAStop) {
    QImage noise(300, 200, QImage::Format_RGB32);
    std::mt19937 random(8);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, static_cast<QRgb>(random()));
    EndingDevice whole(1'000'000, nullptr);
    ASSERT_EQ(writePng(noise, whole), std::nullopt);
    for (const qint64 room : {qint64{0}, qint64{8}, qint64{40}, qint64{20'000}, whole.size() - 1}) {
        EndingDevice failing(room, nullptr);
        EXPECT_EQ(writePng(noise, failing), QStringLiteral("The device takes no more.")) << room;
        EXPECT_EQ(failing.data(), whole.data().first(failing.size()));
    }
    std::stop_source stop;
    EndingDevice stopping(20'000, &stop);
    EXPECT_EQ(writePng(noise, stopping, stop.get_token()), QStringLiteral("It was stopped."));
    EXPECT_LT(stopping.size(), 40'000);
    EndingDevice unasked(0, nullptr);
    EXPECT_TRUE(writePng(QImage(), unasked).has_value());
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
