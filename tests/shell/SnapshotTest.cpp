// Snapshots of the plot: where they go, what they are called, what is on them, and the button's modes.
#include "Classes/GraphViewController/PaperView.h"
#include "Classes/GraphViewController/ShutterSound.h"
#include "PageFixture.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Appearance.h"
#include "WindowFixture.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

class OpenedFolders : public QObject {
    Q_OBJECT

  public:
    OpenedFolders() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~OpenedFolders() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    Q_INVOKABLE void open(const QUrl& url) { paths += url.toLocalFile(); }

    QStringList paths;
};

class SnapshotTest : public PageFixture {
  protected:
    SnapshotTest() {
        UserDefaults::standard().useMemoryStore();
        Appearance::instance().setAnimations(true);
        set("SnapshotsDirType", 0);
        set("SnapshotsDir", shots.path());
        controller.snapshotWriter().setClock([this] { return now; });
    }
    ~SnapshotTest() override {
        Appearance::instance().setAnimations(false);
        UserDefaults::standard().useMemoryStore();
    }

    static void set(const char* key, const QVariant& value) {
        UserDefaults::standard().set(QLatin1String(key), value);
    }
    bool waitForFiles(const QStringList& names) {
        return support::waitUntil([&] { return shots.fileNames() == names; });
    }
    QToolButton& button() { return part<QToolButton>("snapshotButton"); }
    PaperView& container() { return part<PaperView>("plotViewContainer"); }
    QColor corner() {
        return container().grab().toImage().pixelColor(plotView().geometry().topRight() - QPoint(0, -5));
    }

    support::ScratchFolder shots;
    FakeAlerts alerts;
    FakePanels panels;
    OpenedFolders opened;
    QDateTime now{QDate(2026, 3, 9), QTime(7, 5, 4, 300)};
};

TEST_F(SnapshotTest, isNamedAfterItsSecondAndWrittenInTheFormatOfTheNumber) {
    struct Row {
        int format;
        const char* name;
        const char* data;
    };
    for (const Row& row :
         {Row{0, "2026-03-09 07.05.04.png", "PNG"}, Row{1, "2026-03-09 07.05.04.jpg", "JPEG"},
          // Kept: any other number is JPEG under the extension of the other.
          Row{2, "2026-03-09 07.05.05.png", "JPEG"}}) {
        now = QDateTime(QDate(2026, 3, 9), QTime(7, 5, row.format == 2 ? 5 : 4));
        set("SnapshotsFormat", row.format);
        controller.onMakeSnapshotToFile();
        const QString path = shots.path(QLatin1String(row.name));
        ASSERT_TRUE(support::waitUntil([&] { return QFileInfo::exists(path); })) << row.name;
        EXPECT_EQ(QImage(path, row.data).size(), container().size()) << row.name;
        EXPECT_TRUE(QImage(path, row.format == 0 ? "JPEG" : "PNG").isNull()) << row.name;
    }
    EXPECT_TRUE(support::waitUntil([this] { return controller.status().contains(u"07.05.05.png"_s); }));
}

TEST_F(SnapshotTest, waitsForTheNextSecondRatherThanOverwriting) {
    controller.onMakeSnapshotToFile();
    controller.onMakeSnapshotToFile();
    ASSERT_TRUE(waitForFiles({u"2026-03-09 07.05.04.png"_s}));
    now = now.addMSecs(650); // nearly over
    controller.onMakeSnapshotToFile();
    now = now.addMSecs(100);
    const QStringList three{u"2026-03-09 07.05.04.png"_s, u"2026-03-09 07.05.05.png"_s,
                            u"2026-03-09 07.05.06.png"_s};
    ASSERT_TRUE(support::waitUntil([this] { return shots.fileNames().size() == 2; }));
    now = now.addSecs(1);
    EXPECT_TRUE(waitForFiles(three));
    EXPECT_EQ(alerts.messages, QStringList());
}

TEST_F(SnapshotTest, nothingIsLostWhenTheWindowGoesMeanwhile) {
    auto writer = std::make_unique<SnapshotWriter>();
    writer->setClock([this] { return now; });
    for (int i = 0; i < 3; ++i)
        writer->write(controller.getSnapshot(), shots.path(), 0);
    writer.reset();
    EXPECT_EQ(shots.fileNames().size(), 3);
}

TEST_F(SnapshotTest, asksForAFolderWhereNoneIsSet) {
    set("SnapshotsDir", QString());
    controller.onMakeSnapshotToFile();
    EXPECT_EQ(panels.asked, 1);
    EXPECT_EQ(UserDefaults::standard().string(u"SnapshotsDir"_s), QString());
    panels.paths = {shots.path()};
    controller.onMakeSnapshotToFile();
    EXPECT_TRUE(waitForFiles({u"2026-03-09 07.05.04.png"_s}));
    EXPECT_EQ(UserDefaults::standard().string(u"SnapshotsDir"_s), shots.path());
    controller.onMakeSnapshotToClipboard();
    EXPECT_EQ(panels.asked, 2);
}

TEST_F(SnapshotTest, tellsWhereItCouldNotBeWritten) {
    int preferences = 0;
    QObject::connect(&controller, &XGraphViewController::preferencesRequested, [&] { ++preferences; });
    alerts.plan = {1, 0, 0};
    set("SnapshotsDir", shots.path(u"none"_s));
    controller.onMakeSnapshotToFile();
    ASSERT_TRUE(support::waitUntil([this] { return !alerts.messages.isEmpty(); }));
    EXPECT_EQ(alerts.reason, shots.path(u"none/2026-03-09 07.05.04.png: No such file or directory"_s));
    EXPECT_EQ(preferences, 1);

    // The folder that cannot be made: a file has its name.
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", shots.path().toLocal8Bit());
    shots.write(u"Pictures"_s, "");
    set("SnapshotsDirType", 2);
    controller.onMakeSnapshotToFile();
    controller.onRevealSnapshotsFolder();
    qputenv("HOME", home);
    EXPECT_EQ(alerts.reason, shots.path(u"Pictures/Velquin: Not a directory"_s));
    EXPECT_EQ(alerts.messages,
              (QStringList{u"The snapshot was not written."_s, u"The snapshot was not written."_s,
                           u"The folder of the snapshots cannot be shown."_s}));
    EXPECT_EQ(controller.snapshotButtonMode(), 0);
    EXPECT_EQ(preferences, 1);
}

TEST_F(SnapshotTest, goesToTheClipboardAsBytesAndAsAPicture) {
    controller.onMakeSnapshotToClipboard();
    const QMimeData* contents = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(contents->formats().value(0), u"image/png"_s);
    EXPECT_EQ(QImage::fromData(contents->data(u"image/png"_s)).convertToFormat(QImage::Format_RGB32),
              controller.getSnapshot());
    EXPECT_EQ(controller.snapshotButtonMode(), 0);
    EXPECT_EQ(shots.fileNames(), QStringList());
}

TEST_F(SnapshotTest, heldKeysChooseWhatTheButtonDoes) {
    controller.editPlotTitle(); // where the keyboard is does not matter
    QWidget* field = page().focusWidget();
    ASSERT_NE(field, controller.view());
    controller.flagsChanged(Qt::NoModifier); // whatever keys an earlier test left held
    const QString saves = button().accessibleName();
    // As a display tells it: the state before the key.
    const auto send = [&](QEvent::Type type, Qt::Key key, Qt::KeyboardModifiers before) {
        QKeyEvent event(type, key, before);
        QCoreApplication::sendEvent(field, &event);
        return controller.snapshotButtonMode();
    };
    EXPECT_EQ(send(QEvent::KeyPress, Qt::Key_Control, Qt::NoModifier), 1);
    EXPECT_NE(button().accessibleName(), saves);
    EXPECT_EQ(send(QEvent::KeyPress, Qt::Key_Alt, Qt::ControlModifier), 2) << "Alt comes first";
    EXPECT_EQ(send(QEvent::KeyRelease, Qt::Key_Alt, Qt::ControlModifier | Qt::AltModifier), 1);
    EXPECT_EQ(send(QEvent::KeyRelease, Qt::Key_Control, Qt::ControlModifier), 0);
    EXPECT_EQ(button().accessibleName(), saves);

    QTest::mouseClick(&button(), Qt::LeftButton, Qt::AltModifier);
    EXPECT_EQ(opened.paths, QStringList(shots.path()));
    EXPECT_EQ(controller.snapshotButtonMode(), 0);
    EXPECT_EQ(button().accessibleName(), saves);
    QGuiApplication::clipboard()->clear();
    QTest::mouseClick(&button(), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->mimeData()->hasImage());
    QTest::mouseClick(&button(), Qt::LeftButton);
    EXPECT_TRUE(waitForFiles({u"2026-03-09 07.05.04.png"_s}));
    EXPECT_EQ(opened.paths.size(), 1);
}

TEST_F(SnapshotTest, blinksForAMoment) {
    const QColor frame = corner();
    ASSERT_LT(frame.red(), 250);
    const int half = (255 + frame.red()) / 2;
    controller.onMakeSnapshotToClipboard();
    EXPECT_NEAR(corner().red(), half, 1);
    EXPECT_EQ(controller.getSnapshot().pixelColor(plotView().geometry().topRight() - QPoint(0, -5)), frame);
    EXPECT_TRUE(support::waitUntil([this] { return container().opacity() == 1; }));
    EXPECT_EQ(corner(), frame);
    // Kept: without an image it stays so. Nothing that a user can do makes the container so small.
    const support::LogRecorder log;
    container().resize(0, 0);
    controller.onMakeSnapshotToFile();
    EXPECT_EQ(log.lines(),
              QStringList(u"-[XGraphViewController onMakeSnapshot:] Couldn't make snapshot!\n"_s));
    bool isLater = false;
    QTimer::singleShot(250, [&] { isLater = true; });
    EXPECT_TRUE(support::waitUntil([&] { return isLater; }));
    EXPECT_EQ(container().opacity(), 0.5);
    EXPECT_EQ(shots.fileNames(), QStringList());

    container().setOpacity(1);
    Appearance::instance().setAnimations(false);
    controller.onMakeSnapshotToClipboard();
    EXPECT_EQ(container().opacity(), 1);
}

TEST_F(SnapshotTest, showsThePlotAndNothingThatLiesOverIt) {
    const QRect plot = plotView().geometry();
    const QPoint middle = plot.center();
    plotView().setFocus(Qt::TabFocusReason);
    scene().options.showOriginX = scene().options.showOriginY = false;
    scene().options.showVerticalLines = scene().options.showHorizontalLines = false;
    const QImage empty = controller.getSnapshot();
    EXPECT_EQ(empty.size(), container().size());
    EXPECT_EQ(empty.pixelColor(middle - QPoint(0, 60)), QColor(Qt::white)) << "the card";
    EXPECT_EQ(empty.pixelColor(plot.topLeft() + QPoint(1, 200)), QColor(Qt::white)) << "the focus ring";

    addData();
    addCurve(u"Curve"_s)->setY_data_index(2);
    document.setPlotAreaTitle(u"A title"_s);
    controller.setLegendVisible(true);
    controller.setBlackBackground(true);
    ASSERT_TRUE(support::waitUntil([this] { return scene().requestRenderings(); }));
    const QImage full = controller.getSnapshot();
    EXPECT_EQ(full.pixelColor(1, 1), QColor(Qt::black));
    const QRect legend = controller.graphLegend().geometry().translated(plotView().pos());
    EXPECT_EQ(full.pixelColor(legend.center() + QPoint(0, 13)), QColor(Qt::white));
    // Pixel for pixel what the widgets show, once the keyboard is elsewhere.
    button().setFocus();
    QImage shown(container().size(), QImage::Format_RGB32);
    container().render(&shown);
    EXPECT_EQ(full, shown);
}

TEST_F(SnapshotTest, theDiagnosticPageIsNotRedirected) {
    const QString planted = shots.write(u"planted"_s, "precious"), path = shots.path(u"page.pdf"_s);
    ASSERT_TRUE(QFile::link(planted, path));
    controller.setPdfPath(path);
    controller.onMakeSnapshotToPDF();
    EXPECT_EQ(controller.status(), u"Snapshot written as “%1”"_s.arg(path));
    const QString box =
        QString::asprintf("/MediaBox [0 0 %d.000000 %d.000000]", container().width(), container().height());
    EXPECT_TRUE(support::ScratchFolder::read(path).contains(box.toUtf8()));
    EXPECT_EQ(support::ScratchFolder::read(planted), "precious");
}

TEST(ShutterSound, takesTheFirstPlayerThatIsThere) {
    const auto command = [](const QStringList& installed) {
        return ShutterSound::playerCommand(u"a.wav"_s, [&](const QString& program) {
            return installed.contains(program) ? u"/bin/"_s + program : QString();
        });
    };
    EXPECT_EQ(command({u"aplay"_s, u"paplay"_s}), (QStringList{u"/bin/paplay"_s, u"a.wav"_s}));
    EXPECT_EQ(command({u"aplay"_s}), (QStringList{u"/bin/aplay"_s, u"-q"_s, u"a.wav"_s}));
    EXPECT_EQ(command({}), QStringList());
}

} // namespace

#include "SnapshotTest.moc"
