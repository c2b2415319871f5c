// The window that exports pictures: what it takes, what it shows, and what it writes.
#include "Classes/GraphViewController/DocumentPicture.h"
#include "Classes/GraphViewController/ExportPictureController.h"
#include "PageFixture.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "WindowFixture.h"

#include <QBuffer>
#include <QCheckBox>
#include <QComboBox>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class ExportPictureTest : public PageFixture {
  protected:
    ExportPictureTest() {
        UserDefaults::standard().useMemoryStore();
        addData();
        addCurve(u"Curve"_s)->setY_data_index(2);
        document.setPlotAreaTitle(u"A title"_s);
        open();
    }
    ~ExportPictureTest() override {
        delete dialog.data();
        UserDefaults::standard().useMemoryStore();
    }

    void open() {
        delete dialog.data();
        controller.onExportPicture(u"plot"_s);
        dialog = page().findChild<ExportPictureController*>();
        ASSERT_NE(dialog, nullptr);
    }
    template <class Control>
    Control& control(const char* name) {
        return *dialog->findChild<Control*>(QLatin1String(name));
    }
    QLineEdit& width() { return control<QLineEdit>("widthField"); }
    QLineEdit& height() { return control<QLineEdit>("heightField"); }
    QString caption() { return control<QLabel>("captionLabel").text(); }
    bool canExport() { return control<QPushButton>("exportButton").isEnabled(); }
    bool waitForCaption(const QString& start) {
        return support::waitUntil([&] { return caption().startsWith(start); });
    }
    void choose(PictureFormat format) {
        control<QComboBox>("formatBox").setCurrentIndex(static_cast<int>(format));
    }
    void write(const QString& path) {
        panels.paths = {path};
        control<QPushButton>("exportButton").click();
    }
    bool isClosed() {
        return support::waitUntil([this] { return dialog == nullptr || !dialog->isVisible(); });
    }

    FakeAlerts alerts;
    FakePanels panels;
    QPointer<ExportPictureController> dialog;
};

TEST_F(ExportPictureTest, writesEachFormatAtItsSizeAndRemembersTheChoices) {
    struct Row {
        PictureFormat format;
        const char* ending;
        const char* caption;
        const char* sizeInFile;
    };
    const Row rows[] = {
        {PictureFormat::Png, "png", "450 × 300 pixels, about ", nullptr},
        {PictureFormat::Jpeg, "jpg", "450 × 300 pixels, about ", nullptr},
        {PictureFormat::Svg, "svg", "300 × 200 points, about ", "viewBox=\"0 0 300 200\""},
        {PictureFormat::Pdf, "pdf", "300 × 200 points, about ", "/MediaBox [0 0 300.000000 200.000000]"}};
    for (const Row& row : rows) {
        width().setText(u"300"_s);
        height().setText(u"200"_s);
        control<QToolButton>("scale15Button").click();
        choose(row.format);
        EXPECT_EQ(control<QWidget>("scaleGroup").isEnabled(), !isVectorFormat(row.format));
        ASSERT_TRUE(waitForCaption(QString::fromUtf8(row.caption))) << row.ending;
        const QString path = folder.path(u"p."_s + QLatin1String(row.ending));
        write(path);
        ASSERT_TRUE(isClosed());
        EXPECT_EQ(panels.proposedName, u"plot."_s + QLatin1String(row.ending));
        const bool isRight = row.sizeInFile != nullptr
                                 ? support::ScratchFolder::read(path).contains(row.sizeInFile)
                                 : QImageReader(path).size() == QSize(450, 300);
        EXPECT_TRUE(isRight) << row.ending;
        open();
        EXPECT_EQ(width().text(), u"300"_s);
        EXPECT_EQ(control<QComboBox>("formatBox").currentIndex(), static_cast<int>(row.format));
    }
    EXPECT_EQ(alerts.messages, QStringList());
    EXPECT_EQ(folder.fileNames(), (QStringList{u"p.jpg"_s, u"p.pdf"_s, u"p.png"_s, u"p.svg"_s}));
}

TEST_F(ExportPictureTest, refusesWhatIsNoSizeAndSaysWhy) {
    struct Row {
        const char* text;
        bool isTaken;
    };
    for (const Row& row : {Row{"15", false}, Row{"16", true}, Row{"", false}, Row{"1e3", false},
                           Row{"-20", false}, Row{"16385", false}, Row{"99999999999", false}}) {
        width().setText(QString::fromUtf8(row.text));
        EXPECT_EQ(VelquinStyle::isFaulty(&width()), !row.isTaken) << row.text;
        EXPECT_EQ(canExport(), row.isTaken) << row.text;
        EXPECT_EQ(caption() == u"A whole number from 16 to 16,384"_s, !row.isTaken) << row.text;
        EXPECT_FALSE(VelquinStyle::isFaulty(&height()));
    }
    // A side that is too long is so by its scale alone.
    width().setText(u"16384"_s);
    control<QToolButton>("scale3Button").click();
    EXPECT_TRUE(VelquinStyle::isFaulty(&width()));
    EXPECT_FALSE(canExport());
    choose(PictureFormat::Pdf);
    EXPECT_FALSE(VelquinStyle::isFaulty(&width()));
    EXPECT_TRUE(canExport());
}

TEST_F(ExportPictureTest, aFailureNamesFileAndReasonAndLosesNothing) {
    ASSERT_TRUE(waitForCaption(u"1840 × 1100 pixels, about "_s));
    const QString nowhere = folder.path(u"none/p.png"_s), other = folder.write(u"p.pdf"_s, "mine");
    write(nowhere);
    ASSERT_TRUE(support::waitUntil([this] { return !alerts.messages.isEmpty(); }));
    EXPECT_EQ(alerts.messages.last(), u"“p.png” was not written."_s);
    EXPECT_EQ(alerts.reason, nowhere + u": No such file or directory"_s);
    write(other);
    EXPECT_EQ(alerts.messages.last(), u"“p.pdf” was not written."_s);
    EXPECT_EQ(support::ScratchFolder::read(other), "mine");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(canExport());
}

TEST_F(ExportPictureTest, showsWhatThePlotShows) {
    const auto drawnWith = [this] { return drawPicture(controller.pictureOptions(), {400, 300, 1}); };
    const QImage fitted = drawnWith();
    EXPECT_EQ(fitted, drawPicture(pictureOptionsOf(document), {400, 300, 1}));
    plotView().zoomBy(0.5);
    EXPECT_NE(drawnWith(), fitted);
    controller.fitToData();
    EXPECT_EQ(drawnWith(), fitted);
    controller.setBlackBackground(true);
    EXPECT_EQ(drawnWith().pixelColor(0, 0), QColor(Qt::black));
    // Titles and legend are the user's to leave out.
    ExportChoices choices;
    choices.titles = choices.legend = false;
    EXPECT_EQ(choices.applied(controller.pictureOptions()).plotAreaTitle, QString());
    EXPECT_FALSE(choices.applied(controller.pictureOptions()).showLegend);
}

TEST_F(ExportPictureTest, theLookAtItIsWholeAndItsSizeHonest) {
    PlotPictureOptions options = controller.pictureOptions();
    const auto surveyOf = [&](PictureSize size, PictureFormat format) {
        return PictureWork::survey(RecordedPicture(options, size, format), {270, 162}, {});
    };
    // A small picture of the same plot has its corners where the large one has them.
    const PictureSurvey known = surveyOf({920, 550, 2}, PictureFormat::Png);
    EXPECT_EQ(known.preview.size(), QSize(270, 161));
    const auto isPaper = [&](QPoint at) { return known.preview.pixelColor(at).lightness() > 250; };
    for (const QPoint corner : {QPoint(1, 1), QPoint(268, 1), QPoint(1, 159), QPoint(268, 159)})
        EXPECT_TRUE(isPaper(corner));
    EXPECT_FALSE(isPaper({135, 8})) << "the title, in the middle";

    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Jpeg}) {
        const PictureSize large{1600, 900, 3}; // 13 million pixels: not encoded
        QBuffer bytes;
        bytes.open(QIODevice::WriteOnly);
        EXPECT_EQ(RecordedPicture(options, large, format).encode(bytes), std::nullopt);
        const auto estimated = static_cast<double>(surveyOf(large, format).bytes);
        EXPECT_NEAR(estimated / static_cast<double>(bytes.size()), 1, 0.3);
    }
    EXPECT_FALSE(surveyOf({16, 16, 1}, PictureFormat::Png).preview.isNull());
    EXPECT_FALSE(surveyOf({16384, 16, 1}, PictureFormat::Svg).preview.isNull());
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_TRUE(PictureWork::write(RecordedPicture(options, {}, PictureFormat::Png), folder.path(u"p"_s),
                                   stopped.get_token()));
    EXPECT_EQ(folder.fileNames(), QStringList());
}

TEST_F(ExportPictureTest, mayBeClosedWhileItWorks) {
    ASSERT_TRUE(waitForCaption(u"1840 × 1100 pixels, about "_s));
    width().setText(u"6000"_s);
    height().setText(u"5000"_s);
    write(folder.path(u"p.png"_s));
    EXPECT_FALSE(canExport()) << "busy";
    EXPECT_FALSE(control<QToolButton>("scale1Button").isEnabled());
    dialog->reject();
    finishDeletions();
    EXPECT_EQ(dialog, nullptr);
    EXPECT_EQ(folder.fileNames(), QStringList());
    EXPECT_EQ(alerts.messages, QStringList()) << "whoever cancels needs no telling";
}

} // namespace
