// Launches of the program beside one that runs already, and after one that was killed.
#include "Desktop.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using support::ScratchFolder;
using support::waitUntil;
using window_test::Desktop;
using window_test::Program;

namespace {

class Launch : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.fault().isEmpty()) << desktop.fault().toStdString();
        folder.write(u"wave.csv"_qs, "1 2\n2 4\n3 3\n");
        folder.write(u"bad.mox"_qs, "garbage");
    }
    /// Of a launch that ends by itself.
    std::pair<int, QByteArray> outcome(const QStringList& arguments, const QString& workingFolder = {}) {
        Program later(desktop, folder, arguments, workingFolder);
        const int exitCode = later.waitForEnd();
        return {exitCode, later.errors()};
    }
    bool isAlertShown() const {
        return !desktop.xdotool({u"search"_qs, u"--onlyvisible"_qs, u"--name"_qs, u"^Velquin$"_qs}).isEmpty();
    }
    QString activeTitle() const { return desktop.xdotool({u"getactivewindow"_qs, u"getwindowname"_qs}); }
    static void quit(Program& program) {
        EXPECT_EQ(program.waitForEnd(), 0) << program.errors().toStdString();
    }

    Desktop desktop;
    ScratchFolder folder;
};

TEST_F(Launch, handsItsFilesAndOptionsToTheFirst) {
    Program first(desktop, folder, {});
    ASSERT_TRUE(first.waitForWindow(u"Untitled"_qs));
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"home/below"_qs));
    EXPECT_EQ(outcome({u"../../wave.csv"_qs, u"--y"_qs, u"2"_qs}, u"home/below"_qs),
              std::pair(0, QByteArray()));
    ASSERT_TRUE(first.waitForWindow(u"wave"_qs));
    EXPECT_TRUE(waitUntil([&] { return activeTitle().startsWith(u"wave"_qs); }));
    EXPECT_EQ(outcome({}), std::pair(0, QByteArray()));
    EXPECT_TRUE(first.waitForWindow(u"Untitled"_qs)) << "the untouched one made room";

    EXPECT_EQ(outcome({u"wave.csv"_qs, u"--y"_qs}).first, 2) << "its own usage is its own matter";
    const auto [exitCode, errors] = outcome({u"bad.mox"_qs});
    EXPECT_EQ(exitCode, 1);
    EXPECT_TRUE(errors.startsWith("velquin: bad.mox: it is not a document")) << errors.toStdString();
    EXPECT_TRUE(waitUntil([&] { return isAlertShown(); }));
    desktop.key(u"Return"_qs);
    EXPECT_TRUE(waitUntil([&] { return !isAlertShown(); }));
    desktop.steadyScreen();
    desktop.key(u"ctrl+q"_qs);
    quit(first);
}

TEST_F(Launch, findsDataThatADocumentNamesRelativelyFromWhereItWasOpened) {
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"home/below"_qs));
    const QByteArray data = folder.write(u"home/below/deep.csv"_qs, "1 2\n").toUtf8();
    ASSERT_EQ(outcome({u"deep.csv"_qs, u"--save"_qs, u"deep.mox"_qs}, u"home/below"_qs).first, 0);
    const QString document = folder.path(u"home/below/deep.mox"_qs);
    folder.write(u"home/below/deep.mox"_qs, ScratchFolder::read(document).replace(data, "deep.csv"));
    Program first(desktop, folder, {});
    ASSERT_TRUE(first.waitForWindow(u"Untitled"_qs));
    EXPECT_EQ(outcome({u"deep.mox"_qs, u"--y"_qs, u"2"_qs}, u"home/below"_qs).first, 0);
    ASSERT_TRUE(first.waitForWindow(u"deep"_qs));
    EXPECT_TRUE(waitUntil([&] { return first.title().contains(u'*'); }))
        << "columns came, and with them a curve";
    desktop.key(u"ctrl+s"_qs);
    EXPECT_TRUE(waitUntil([&] { return ScratchFolder::read(document).contains("<key>ColorAlpha</key>"); }));
    desktop.key(u"ctrl+q"_qs);
    quit(first);
}

TEST_F(Launch, raisesTheWindowOfAFileThatIsOpen) {
    ASSERT_EQ(outcome({u"wave.csv"_qs, u"--save"_qs, u"wave.mox"_qs}).first, 0);
    ASSERT_TRUE(QFile::link(folder.path(u"wave.mox"_qs), folder.path(u"other.mox"_qs)));
    Program first(desktop, folder, {u"wave.mox"_qs});
    ASSERT_TRUE(first.waitForWindow(u"wave"_qs));
    EXPECT_EQ(outcome({}).first, 0);
    ASSERT_TRUE(first.waitForWindow(u"Untitled"_qs));
    EXPECT_EQ(outcome({u"other.mox"_qs}), std::pair(0, QByteArray()));
    EXPECT_TRUE(waitUntil([&] { return activeTitle().startsWith(u"wave"_qs); }));
    EXPECT_FALSE(first.hasWindow(u"other"_qs));
    desktop.key(u"ctrl+q"_qs);
    quit(first);
}

TEST_F(Launch, takesThePlaceOfOneThatWasKilled) {
    {
        Program killed(desktop, folder, {});
        ASSERT_TRUE(killed.waitForWindow(u"Untitled"_qs));
        killed.kill();
        EXPECT_EQ(killed.waitForEnd(), -1);
    }
    Program next(desktop, folder, {u"wave.csv"_qs});
    ASSERT_TRUE(next.waitForWindow(u"wave"_qs));
    EXPECT_EQ(outcome({}).first, 0);
    EXPECT_TRUE(next.waitForWindow(u"Untitled"_qs));
    desktop.key(u"ctrl+q"_qs);
    quit(next);
}

TEST_F(Launch, tellsInAnAlertWhatNobodyWouldReadElsewhere) {
    Program program(desktop, folder, {u"bad.mox"_qs});
    ASSERT_TRUE(program.waitForWindow(u"Velquin"_qs)) << program.errors().toStdString();
    desktop.steadyScreen();
    desktop.key(u"Return"_qs);
    EXPECT_EQ(program.waitForEnd(), 1);
    EXPECT_TRUE(program.errors().startsWith("velquin: bad.mox: it is not a document"));
}

} // namespace
