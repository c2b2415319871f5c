// The built program in a real window, used with keyboard and mouse, judged by what is on the screen and in
// its files.
#include "Desktop.h"

#include "Platform/Core/PropertyList.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using support::ScratchFolder;
using support::waitUntil;
using window_test::Desktop;
using window_test::Program;

namespace {

constexpr QRect windowFrame{40, 60, 1280, 800};
/// Within the window's content.
constexpr QRect plotContainer{257, 100, 1011, 668};
constexpr QPoint expressionSwitchOfY{230, 183};
constexpr QPoint plotCentre{800, 400};
constexpr QPoint snapshotButton{1257, 75};

QByteArray wave(int rows) {
    QByteArray bytes;
    for (int row = 0; row < rows; ++row)
        bytes += QByteArray::number(row) + ',' + QByteArray::number(row * 37 % 101) + '\n';
    return bytes;
}

class RealWindow : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(desktop.fault().isEmpty()) << desktop.fault().toStdString(); }
    /// Compares what the plot shows with a former look at it; keeps both pictures when they differ.
    void expectPlot(const QImage& expected, const char* when) const {
        const QImage shown = plot();
        if (shown == expected)
            return;
        const QString name = QDir::current().filePath(QLatin1String(when));
        shown.save(name + u" - shown.png"_qs);
        expected.save(name + u" - expected.png"_qs);
        ADD_FAILURE() << "the plot is another " << when << ": see " << name.toStdString();
    }
    void TearDown() override {
        if (!HasFailure())
            return;
        const char* name = testing::UnitTest::GetInstance()->current_test_info()->name();
        const QString picture = QDir::current().filePath(QLatin1String(name) + u".png"_qs);
        desktop.screen().save(picture);
        ADD_FAILURE() << "the screen then: " << picture.toStdString();
    }

    void start(const QStringList& arguments, const QString& title) {
        program = std::make_unique<Program>(desktop, folder, arguments);
        useWindow(title);
    }
    void useWindow(const QString& title) {
        ASSERT_TRUE(program->waitForWindow(title)) << program->errors().toStdString();
        program->placeWindow(windowFrame);
        desktop.steadyScreen();
    }
    QPoint onScreen(QPoint place) const { return program->content().topLeft() + place; }
    QImage plot() const {
        // The pointer's ticks and read-outs must not differ between two looks.
        desktop.moveTo({1399, 899});
        return desktop.steadyScreen().copy(plotContainer.translated(program->content().topLeft()));
    }
    /// Answers a file dialog that the keys brought up.
    void answerFileDialog(const QString& keys, const QString& dialog, const QString& path) {
        desktop.key(keys);
        ASSERT_TRUE(waitUntil([&] { return program->hasWindow(dialog); }));
        desktop.steadyScreen();
        desktop.type(path);
        ASSERT_TRUE(waitUntil([&] {
            desktop.steadyScreen();
            desktop.key(u"Return"_qs); // the first may close the list of suggestions alone
            return !program->hasWindow(dialog);
        }));
        desktop.steadyScreen();
    }
    QVariantMap savedDocument(const QString& path) const {
        return PropertyList::read(ScratchFolder::read(path)).value.value_or(QVariant()).toMap();
    }
    QVariantMap savedCurve(const QString& path) const {
        return savedDocument(path)[u"Curves"_qs].toList().value(0).toMap();
    }
    /// Saves and waits until the file is a new one.
    QVariantMap saveAgain(const QString& path) {
        EXPECT_TRUE(QFile::remove(path));
        desktop.key(u"ctrl+s"_qs);
        EXPECT_TRUE(waitUntil([&] { return QFile::exists(path); }));
        return savedDocument(path);
    }
    QStringList autosaves() const {
        return QDir(folder.path(u"home/velquin/autosave"_qs)).entryList({u"*.autosave"_qs}, QDir::Files);
    }
    /// An alert asks over the first window.
    void startToAnAlert() {
        program = std::make_unique<Program>(desktop, folder, QStringList());
        const QStringList activeName{u"getactivewindow"_qs, u"getwindowname"_qs};
        ASSERT_TRUE(waitUntil([&] { return desktop.xdotool(activeName) == u"Velquin"_qs; }))
            << program->errors().toStdString();
        desktop.steadyScreen();
    }
    bool isEdited() const { return program->title().contains(u'*'); }

    Desktop desktop;
    ScratchFolder folder;
    std::unique_ptr<Program> program;
};

TEST_F(RealWindow, opensAFileAddsACurveZoomsMeasuresUndoesSavesAndShowsTheSameAgain) {
    const QString data = folder.write(u"hour by hour.csv"_qs, wave(500));
    const QString document = folder.path(u"harbour.mox"_qs);
    start({}, u"Velquin"_qs);
    answerFileDialog(u"ctrl+o"_qs, u"Open"_qs, data);
    useWindow(u"hour by hour"_qs);
    desktop.key(u"ctrl+shift+n"_qs); // a curve
    const QImage column = plot();

    desktop.click(onScreen(expressionSwitchOfY)); // which puts the keyboard into the field
    desktop.type(u"sin(c1/20)*c2"_qs);
    desktop.key(u"Return"_qs);
    const QImage fitted = plot();
    EXPECT_FALSE(column == fitted) << "the expression is drawn";
    EXPECT_TRUE(isEdited());
    answerFileDialog(u"ctrl+s"_qs, u"Save"_qs, document);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(document); }));
    useWindow(u"harbour"_qs);
    EXPECT_EQ(savedCurve(document)[u"Y_data_expression"_qs], u"sin(c1/20)*c2"_qs);
    EXPECT_TRUE(waitUntil([&] { return !isEdited(); }));

    desktop.key(u"ctrl+2"_qs); // zoom
    desktop.drag(onScreen(plotCentre), onScreen(plotCentre + QPoint(150, 120)));
    EXPECT_FALSE(plot() == fitted);
    desktop.key(u"ctrl+0"_qs); // fit
    expectPlot(fitted, "after fitting again");

    desktop.key(u"ctrl+3"_qs); // ruler
    desktop.drag(onScreen(plotCentre), onScreen(plotCentre + QPoint(150, 120)));
    expectPlot(fitted, "after the ruler was let go");
    desktop.key(u"ctrl+0"_qs); // measuring ended the following of the data

    desktop.key(u"ctrl+z"_qs);
    desktop.key(u"ctrl+z"_qs);
    expectPlot(column, "after undoing the expression");
    EXPECT_TRUE(isEdited());
    desktop.key(u"ctrl+shift+z"_qs);
    desktop.key(u"ctrl+shift+z"_qs);
    expectPlot(fitted, "after redoing it");
    saveAgain(document);
    EXPECT_EQ(savedCurve(document)[u"Y_data_expression"_qs], u"sin(c1/20)*c2"_qs);
    desktop.key(u"ctrl+q"_qs);
    ASSERT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();

    start({document}, u"harbour"_qs);
    expectPlot(fitted, "in the document opened again");
    EXPECT_FALSE(isEdited());
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, asksBeforeChangesAreLost) {
    const QString data = folder.write(u"Hafen täglich.csv"_qs, wave(50));
    start({data}, u"Hafen täglich"_qs);
    desktop.key(u"ctrl+shift+n"_qs);
    ASSERT_TRUE(waitUntil([&] { return isEdited(); }));
    desktop.key(u"ctrl+q"_qs);
    ASSERT_TRUE(waitUntil([&] { return desktop.xdotool({u"getactivewindow"_qs}) != program->windowId(); }));
    desktop.steadyScreen();
    desktop.key(u"Escape"_qs);
    ASSERT_TRUE(waitUntil([&] { return desktop.xdotool({u"getactivewindow"_qs}) == program->windowId(); }));
    EXPECT_TRUE(program->isRunning());
    desktop.key(u"ctrl+q"_qs);
    desktop.steadyScreen();
    desktop.key(u"Tab"_qs); // from "Save" to "Discard"
    desktop.key(u"Return"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, readsWhatIsTypedAndTakesItsTabAwayAndBack) {
    start({}, u"Velquin"_qs);
    desktop.key(u"ctrl+shift+t"_qs);
    desktop.steadyScreen();
    desktop.type(u"1 2\n2 4\n3 9"_qs);
    const QString document = folder.path(u"typed.mox"_qs);
    answerFileDialog(u"ctrl+s"_qs, u"Save"_qs, document);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(document); }));
    const auto settings = [&] {
        return savedDocument(document)[u"Datasources"_qs].toList().value(0).toMap()[u"Settings"_qs].toMap();
    };
    EXPECT_EQ(settings()[u"Text"_qs], u"1 2\n2 4\n3 9"_qs) << "text that waits for its second is saved";

    useWindow(u"typed"_qs);
    desktop.key(u"ctrl+shift+w"_qs); // the tab, after a question
    desktop.steadyScreen();
    desktop.key(u"Return"_qs);
    ASSERT_TRUE(waitUntil([&] { return isEdited(); }));
    desktop.key(u"ctrl+z"_qs);
    ASSERT_TRUE(waitUntil([&] { return !isEdited(); }));
    ASSERT_TRUE(QFile::remove(document));
    desktop.key(u"ctrl+s"_qs);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(document); }));
    EXPECT_EQ(settings()[u"Text"_qs], u"1 2\n2 4\n3 9"_qs);
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, movesTheLegendAndKeepsItsPlace) {
    const QString document = folder.path(u"legend.mox"_qs);
    folder.write(u"wave.csv"_qs, wave(50));
    {
        QProcess batch;
        batch.setWorkingDirectory(folder.path());
        batch.start(QStringLiteral(VELQUIN_PROGRAM), {u"wave.csv"_qs, u"--y"_qs, u"2"_qs, u"--curve-title"_qs,
                                                      u"Wave"_qs, u"--legend"_qs, u"--save"_qs, document});
        ASSERT_TRUE(batch.waitForFinished());
        ASSERT_EQ(batch.exitCode(), 0) << batch.readAllStandardError().toStdString();
    }
    start({document}, u"legend"_qs);
    const QImage before = plot();
    // From the top right, where it is made, to the left, a third from the foot.
    const QPoint grip = plotContainer.topRight() + QPoint(-16, 16);
    desktop.drag(onScreen(grip), onScreen(plotContainer.bottomLeft() + QPoint(200, -100)));
    EXPECT_FALSE(plot() == before);
    EXPECT_TRUE(isEdited());
    const QVariantMap options = saveAgain(document)[u"PlotAreaOptions"_qs].toMap();
    EXPECT_EQ(options[u"legendAlignment"_qs].toInt(), 4 + 32) << "left and bottom";
    EXPECT_GT(options[u"legendMargins"_qs].toList().value(0).toDouble(), 10);
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, recoversWhatWasNotSavedWhenItWasKilled) {
    start({folder.write(u"wave.csv"_qs, wave(50))}, u"wave"_qs);
    desktop.key(u"ctrl+shift+n"_qs);
    const QImage before = plot();
    ASSERT_TRUE(waitUntil([&] { return autosaves().size() == 1; }));
    program->kill();
    EXPECT_EQ(program->waitForEnd(), -1);

    startToAnAlert();
    desktop.key(u"Return"_qs); // "Recover"
    useWindow(u"wave"_qs);
    EXPECT_TRUE(isEdited());
    expectPlot(before, "after recovering it");
    EXPECT_EQ(autosaves().size(), 1) << "kept until it is saved";
    desktop.key(u"ctrl+q"_qs);
    desktop.steadyScreen();
    desktop.key(u"Tab"_qs); // from "Save" to "Discard"
    desktop.key(u"Return"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
    EXPECT_TRUE(autosaves().isEmpty());
}

TEST_F(RealWindow, keepsChangesWhenItIsTerminated) {
    start({folder.write(u"wave.csv"_qs, wave(50))}, u"wave"_qs);
    desktop.key(u"ctrl+shift+n"_qs);
    ASSERT_TRUE(waitUntil([&] { return isEdited(); }));
    desktop.key(u"ctrl+q"_qs);
    ASSERT_TRUE(waitUntil([&] { return desktop.xdotool({u"getactivewindow"_qs}) != program->windowId(); }));
    program->terminate(); // while the question stands
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
    ASSERT_EQ(autosaves().size(), 1);

    startToAnAlert();
    desktop.key(u"Escape"_qs); // "Later"
    useWindow(u"Untitled"_qs);
    program->terminate();
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
    EXPECT_EQ(autosaves().size(), 1);

    startToAnAlert();
    desktop.key(u"Return"_qs); // "Recover"
    useWindow(u"wave"_qs);
    const QString document = folder.path(u"kept.mox"_qs);
    answerFileDialog(u"ctrl+s"_qs, u"Save"_qs, document);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(document) && autosaves().isEmpty(); }));
    EXPECT_EQ(savedDocument(document)[u"Curves"_qs].toList().size(), 1);
    useWindow(u"kept"_qs);
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, endsInTheMiddleOfARead) {
    const QString data = folder.write(u"long.csv"_qs, wave(1'000'000));
    start({data, u"--y"_qs, u"mean(c2, 1000)"_qs}, u"long"_qs);
    desktop.key(u"F5"_qs);
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, keepsThePreferences) {
    const auto settings = [&] {
        QStringList lines;
        for (const QByteArray& line :
             ScratchFolder::read(folder.path(u"home/velquin/velquin.conf"_qs)).split('\n')) {
            if (line.startsWith("SnapshotsFormat") || line.startsWith("MaxRecentFiles"))
                lines += QString::fromUtf8(line);
        }
        return lines.join(u' ');
    };
    const auto changeByKeys = [&](const QString& format, const QString& count) {
        desktop.key(u"ctrl+comma"_qs);
        ASSERT_TRUE(program->waitForWindow(u"Preferences"_qs));
        desktop.steadyScreen();
        desktop.key(u"Tab"_qs); // from the folder to its button
        desktop.key(u"Tab"_qs);
        desktop.key(format);
        desktop.key(u"Tab"_qs);
        desktop.key(count);
        desktop.steadyScreen();
        desktop.key(u"Escape"_qs);
        ASSERT_TRUE(waitUntil([&] { return !program->hasWindow(u"Preferences"_qs); }));
        useWindow(u"Velquin"_qs);
        desktop.key(u"ctrl+q"_qs);
        EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
    };
    start({}, u"Velquin"_qs);
    changeByKeys(u"Down"_qs, u"Up"_qs);
    EXPECT_EQ(settings(), u"MaxRecentFiles=16 SnapshotsFormat=1"_qs);
    start({}, u"Velquin"_qs);
    changeByKeys(u"Up"_qs, u"Up"_qs); // which does nothing to what is not shown
    EXPECT_EQ(settings(), u"MaxRecentFiles=17 SnapshotsFormat=0"_qs);
}

TEST_F(RealWindow, inspectsThePlot) {
    const QString data = folder.write(u"waves.csv"_qs, wave(500));
    const QString document = folder.path(u"waves.mox"_qs);
    start({data, u"--y"_qs, u"c2"_qs}, u"waves"_qs);
    const QImage before = plot();
    answerFileDialog(u"ctrl+s"_qs, u"Save"_qs, document);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(document); }));
    useWindow(u"waves"_qs);
    desktop.key(u"ctrl+i"_qs);
    ASSERT_TRUE(program->waitForWindow(u"Plot Inspector"_qs));
    desktop.steadyScreen();
    for (const QString& title : {u"Tides"_qs, u"Day"_qs}) { // of the plot, of the x axis
        desktop.type(title);
        desktop.key(u"Tab"_qs);
    }
    desktop.steadyScreen();
    const QVariantMap options = saveAgain(document)[u"PlotAreaOptions"_qs].toMap(); // typed at the inspector
    EXPECT_EQ(options[u"title"_qs], u"Tides"_qs);
    EXPECT_EQ(options[u"axisTitleX"_qs], u"Day"_qs);
    desktop.key(u"Escape"_qs);
    ASSERT_TRUE(waitUntil([&] { return !program->hasWindow(u"Plot Inspector"_qs); }));
    useWindow(u"waves"_qs);
    EXPECT_FALSE(plot() == before) << "the titles are drawn";
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
}

TEST_F(RealWindow, readsAFileThatChangesWhereThatIsWanted) {
    const QString data = folder.write(u"live.csv"_qs, wave(300));
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"home/velquin"_qs));
    folder.write(u"home/velquin/velquin.conf"_qs, "[General]\nLiveFiles=" + data.toUtf8() + '\n');
    const QStringList arguments{data, u"--y"_qs, u"c2"_qs};
    start(arguments, u"live"_qs);
    const QImage before = plot();
    const QString next = folder.write(u"next.csv"_qs, wave(900));
    ASSERT_EQ(std::rename(qPrintable(next), qPrintable(data)), 0);
    QImage after;
    EXPECT_TRUE(waitUntil([&] {
        after = plot();
        return after != before;
    }));
    EXPECT_FALSE(isEdited());
    desktop.key(u"ctrl+q"_qs);
    EXPECT_EQ(program->waitForEnd(), 0) << program->errors().toStdString();
    start(arguments, u"live"_qs);
    expectPlot(after, "in a program that never knew the former file");
}

TEST_F(RealWindow, takesSnapshotsOfWhatIsOnTheScreen) {
    const QString data = folder.write(u"waves.csv"_qs, wave(500));
    start({data, u"--y"_qs, u"sin(c1/20)*c2"_qs}, u"waves"_qs);
    const QImage shown = plot();
    const QDir snapshots(folder.path(u"home/Pictures/Velquin"_qs));
    const auto waitForSnapshots = [&](int count) {
        return waitUntil([&] { return snapshots.entryList(QDir::Files).size() == count; });
    };
    desktop.key(u"ctrl+shift+e"_qs);
    ASSERT_TRUE(waitForSnapshots(1));
    const QImage snapshot(snapshots.filePath(snapshots.entryList(QDir::Files).value(0)));
    EXPECT_EQ(snapshot.convertToFormat(shown.format()), shown);

    const QPoint button = onScreen(snapshotButton);
    desktop.xdotool({u"keydown"_qs, u"ctrl"_qs});
    desktop.click(button); // which copies
    desktop.xdotool({u"keyup"_qs, u"ctrl"_qs});
    desktop.steadyScreen();
    desktop.click(button);
    desktop.click(button); // in the same second, as a rule
    EXPECT_TRUE(waitForSnapshots(3));
    expectPlot(shown, "after the snapshots");
}

} // namespace
