// The built program from outside: exit codes, error lines, and what its outputs hold.
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using support::ScratchFolder;

namespace {

struct Outcome {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

Outcome velquin(const QStringList& arguments, const ScratchFolder& folder,
                const QStringList& environment = {}) {
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.remove(u"DISPLAY"_qs);
    variables.insert(u"QT_QPA_PLATFORM"_qs, u"xcb"_qs); // a batch run must not ask for a display
    variables.insert(u"XDG_CONFIG_HOME"_qs, folder.path(u"config"_qs));
    for (const QString& variable : environment)
        variables.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(variables);
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(VELQUIN_PROGRAM), arguments);
    EXPECT_TRUE(process.waitForFinished(60'000)) << "the program hangs";
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << process.readAllStandardError().toStdString();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QStringList words(const char* line) {
    return QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
}

const QByteArray smallTable = "time,air,\"water, 1 m\"\n10,1.5,-2\n20,,1e300\n30,0.1,-0\n";

struct FailureRow {
    const char* arguments;
    int exitCode;
    const char* error; ///< part of the one line
};

class ProgramFails : public testing::TestWithParam<FailureRow> {};

TEST_P(ProgramFails, withOneLineAndItsExitCode) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    folder.write(u"bad.mox"_qs, "garbage");
    ::mkfifo(folder.path(u"pipe"_qs).toUtf8().constData(), 0600);
    for (const QString& name : {u"full.svg"_qs, u"full.png"_qs, u"pipe.mox"_qs})
        QFile::link(u"/dev/full"_qs, folder.path(name));
    const Outcome outcome = velquin(words(GetParam().arguments), folder);
    EXPECT_EQ(outcome.exitCode, GetParam().exitCode) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count('\n'), 1) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.startsWith("velquin: ")) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains(GetParam().error)) << outcome.err.toStdString();
    EXPECT_EQ(QFileInfo::exists(folder.path(u"out.csv"_qs)), false) << "nothing half-written stays";
}

INSTANTIATE_TEST_SUITE_P(
    Usage, ProgramFails,
    testing::Values(FailureRow{"--nosuch a.csv", 2, "no option --nosuch"},
                    FailureRow{"a.csv --table", 2, "--table needs an argument"},
                    FailureRow{"a.csv --header=1 --table -", 2, "--header takes no argument"},
                    FailureRow{"a.csv a.csv --table out.csv", 2, "exactly one FILE"},
                    FailureRow{"--table out.csv", 2, "exactly one FILE"},
                    FailureRow{"a.csv --delimiter colon --table -", 2, "--delimiter takes"},
                    FailureRow{"a.csv --delimiter numbers --header --table -", 2, "--header"},
                    FailureRow{"a.csv --header --table -", 2, "--header"},
                    FailureRow{"a.csv --line-width 2 --y 1 --values -", 2, "before any --y"},
                    FailureRow{"a.csv --y 1 --opacity 0 --values -", 2, "--opacity"},
                    FailureRow{"a.csv --y 1 --color #+12345 --values -", 2, "#rrggbb"},
                    FailureRow{"a.csv --y 1 --color red --values -", 2, "#rrggbb"},
                    FailureRow{"a.csv --y 1 --shape blob --values -", 2, "--shape takes"},
                    FailureRow{"a.csv --x-axis numerical --values -", 2, "--x-axis takes"},
                    FailureRow{"a.csv --x-range 5:5 --values -", 2, "a range that grows"},
                    FailureRow{"a.csv --x-range 1e999:2 --values -", 2, "finite"},
                    FailureRow{"a.csv --snapshot a.gif", 2, "png, jpg, pdf or svg"},
                    FailureRow{"a.csv --size 20000x10 --snapshot a.png", 2, "--size"},
                    FailureRow{"a.csv --size 16000x16000 --scale 3 --snapshot a.png", 2, "device pixels"},
                    FailureRow{"a.csv --scale nan --snapshot a.png", 2, "--scale"},
                    FailureRow{"a.csv --table - --values -", 2, "standard output"}));

INSTANTIATE_TEST_SUITE_P(
    Work, ProgramFails,
    testing::Values(
        FailureRow{"missing.csv --table out.csv", 1, "missing.csv: No such file"},
        FailureRow{". --table out.csv", 1, "irectory"}, FailureRow{"pipe --table out.csv", 1, "pipe: "},
        FailureRow{"/dev/zero --table out.csv", 1, "/dev/zero: "},
        FailureRow{"bad.mox --table out.csv", 1, "bad.mox: it is not a document"},
        FailureRow{"missing.mox --save out.csv", 1, "missing.mox: "},
        FailureRow{"a.csv --delimiter comma --y 4 --values out.csv", 1, "no column 4, the last is 3"},
        FailureRow{"a.csv --delimiter comma --y -1 --values out.csv", 1, "no column -1"},
        FailureRow{"a.csv --delimiter comma --table nosuch/out.csv", 1, "nosuch/out.csv: "},
        FailureRow{"a.csv --delimiter comma --y 1 --snapshot nosuch/out.png", 1, "nosuch/out.png: "},
        FailureRow{"a.csv --y 1 --snapshot full.svg", 1, "full.svg: No space left on device"},
        FailureRow{"a.csv --y 1 --snapshot full.png", 1, "full.png: No space left on device"},
        FailureRow{"a.csv --save pipe.mox", 1, "pipe.mox: "},
        FailureRow{"a.csv --y 99999999999999999999 --values -", 1, "no column 99999999999999999999"},
        FailureRow{"a.csv --y { --values -", 1, "expression \"{\""},
        FailureRow{"a.csv --y c1=5 --values -", 1, "Nothing can be assigned"},
        FailureRow{"a.csv --table /dev/full", 1, "/dev/full: No space left on device"},
        FailureRow{"a.csv --save /dev/full/x.mox", 1, "x.mox: "}));

TEST(Program, tableIsShortestRoundTripWithEmptyCells) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    const Outcome outcome = velquin(words("a.csv --delimiter comma --header --table -"), folder);
    EXPECT_EQ(outcome.out, "Row number,time,air,\"water, 1 m\"\n0,10,1.5,-2\n1,20,,1e+300\n2,30,0.1,-0\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST(Program, tableFeedsItself) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    ASSERT_EQ(velquin(words("a.csv --delimiter comma --header --table b.csv"), folder).exitCode, 0);
    ASSERT_EQ(velquin(words("b.csv --delimiter comma --header --y 2 --table c.csv"), folder).exitCode, 0);
    EXPECT_TRUE(ScratchFolder::read(folder.path(u"c.csv"_qs)).startsWith("Row number,Row number,time,air"));
}

TEST(Program, valuesFollowTheOrderOfXAndY) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    QStringList arguments = words("a.csv --delimiter comma --header --y air --x time --y");
    arguments << u"water, 1 m"_qs << u"--y"_qs << u"0"_qs << u"--values"_qs << u"-"_qs;
    const Outcome outcome = velquin(arguments, folder);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "x1,y1,x2,y2,x3,y3\n0,1.5,10,-2,10,0\n1,,20,1e+300,20,1\n2,0.1,30,-0,30,2\n");
}

TEST(Program, expressionsAreValuesToo) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    const Outcome outcome = velquin(
        words("a.csv --delimiter comma --header --x \"time\"/10 --y c2*row --point-size air --values -"),
        folder);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "x1,y1,size1\n1,0,1.5\n2,,\n3,0.2,0.1\n");
}

TEST(Program, skipAndEveryTakeTheStatedLines) {
    const ScratchFolder folder;
    folder.write(u"a.txt"_qs, "l0 0\nl1 1\nl2 2\nl3 3\nl4 4\nl5 5\n");
    EXPECT_EQ(velquin(words("a.txt --skip 1 --every 2 --delimiter space --table -"), folder).out,
              "Row number,Column 1,Column 2\n0,1,1\n1,3,3\n2,5,5\n");
}

TEST(Program, aSavedDocumentOpensWithTheSamePicture) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    const Outcome first = velquin(
        words("a.csv --delimiter comma --header --x 1 --y 0 --color #336699 --title Air --y-title deg "
              "--x-range 0:40 --snapshot 1.png --save d.mox --size 400x300 --scale 1.5"),
        folder);
    ASSERT_EQ(first.exitCode, 0) << first.err.toStdString();
    const Outcome second =
        velquin(words("d.mox --snapshot 2.png --save e.mox --values - --size 400x300 --scale 1.5"), folder);
    ASSERT_EQ(second.exitCode, 0) << second.err.toStdString();
    EXPECT_EQ(ScratchFolder::read(folder.path(u"d.mox"_qs)), ScratchFolder::read(folder.path(u"e.mox"_qs)));
    const QImage picture(folder.path(u"1.png"_qs));
    EXPECT_EQ(picture.size(), QSize(600, 450));
    EXPECT_EQ(picture, QImage(folder.path(u"2.png"_qs)));
    int coloured = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            coloured += qBlue(pixel) > qRed(pixel) + 60;
        }
    }
    EXPECT_GT(coloured, 0) << "the curve is drawn in its colour";
}

TEST(Program, vectorPicturesHoldOneStrokeEachAndText) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, "0\n1\n4\n9\n");
    const Outcome outcome = velquin(words("a.csv --y 1 --color #ff0000 --line-width 3 --title Squares "
                                          "--snapshot p.svg --snapshot p.pdf --snapshot p.jpg"),
                                    folder);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    const QByteArray svg = ScratchFolder::read(folder.path(u"p.svg"_qs));
    EXPECT_EQ(svg.count("#ff0000"), 1) << "one stroke for one sub-path";
    EXPECT_FALSE(svg.contains("<image")) << "no bitmap stands in for the curve";
    EXPECT_TRUE(ScratchFolder::read(folder.path(u"p.pdf"_qs)).startsWith("%PDF"));
    EXPECT_EQ(QImage(folder.path(u"p.jpg"_qs)).size(), QSize(920, 550));
}

TEST(Program, picturesHaveALegendWhenAskedForIt) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, "0\n1\n4\n9\n");
    const auto draw = [&](const char* options, const char* file) {
        const Outcome outcome = velquin(words("a.csv --y 1 --curve-title Tide --snapshot") +
                                            QStringList{QLatin1String(file)} + words(options),
                                        folder);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        return ScratchFolder::read(folder.path(QLatin1String(file)));
    };
    // Its right edge is 10 from the plot's, which ends 12 from the picture's.
    constexpr QPoint onEdge(920 - 12 - 10 - 1, 8 + 10 + 20);
    for (const char* file : {"p.png", "p.jpg"}) {
        EXPECT_LT(qGray(QImage::fromData(draw("--legend", file)).pixel(onEdge)), 40) << file;
        EXPECT_GT(qGray(QImage::fromData(draw("", file)).pixel(onEdge)), 200) << file;
    }
    EXPECT_TRUE(draw("--legend", "p.svg").contains("Tide"));
    EXPECT_FALSE(draw("", "p.svg").contains("Tide"));
    EXPECT_GT(draw("--legend", "p.pdf").size(), draw("", "p.pdf").size() + 50);
    draw("--legend --save d.mox", "p.png");
    const QByteArray saved = ScratchFolder::read(folder.path(u"d.mox"_qs));
    EXPECT_TRUE(saved.mid(saved.indexOf("showLegend"), 40).contains("<true/>")) << "and in a window later";
}

TEST(Program, leavesTheUserDefaultsAlone) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, "1\n");
    ASSERT_EQ(velquin(words("a.csv --table out.csv"), folder).exitCode, 0);
    EXPECT_EQ(folder.fileNames(), (QStringList{u"a.csv"_qs, u"out.csv"_qs}));
}

TEST(Program, aCommaLocaleChangesNoNumber) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, "1.5 2.25\n");
    const Outcome outcome =
        velquin(words("a.csv --table - --y 1 --save d.mox"), folder, {u"LC_ALL=de_DE.UTF-8"_qs});
    EXPECT_EQ(outcome.out, "Row number,Column 1,Column 2\n0,1.5,2.25\n");
    EXPECT_TRUE(ScratchFolder::read(folder.path(u"d.mox"_qs)).contains("<real>"));
}

TEST(Program, withoutADisplayAWindowIsRefused) {
    const ScratchFolder folder;
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        variables.remove(QLatin1String(name));
    process.setProcessEnvironment(variables);
    process.start(QStringLiteral(VELQUIN_PROGRAM), {folder.write(u"a.csv"_qs, smallTable)});
    ASSERT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(process.readAllStandardError(), "velquin: there is no display to open a window on\n");
}

TEST(Program, headerOfNumbersIsWrongUsageInAWindowToo) {
    const ScratchFolder folder;
    folder.write(u"a.csv"_qs, smallTable);
    EXPECT_EQ(velquin(words("a.csv --header"), folder, {u"QT_QPA_PLATFORM=offscreen"_qs}).exitCode, 2);
}

TEST(Program, helpAndVersion) {
    const ScratchFolder folder;
    const Outcome help = velquin({u"--help"_qs}, folder);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* option : {"--snapshot", "--every", "--curve-title", "--y-range", "--legend"})
        EXPECT_TRUE(help.out.contains(option)) << option;
    EXPECT_TRUE(velquin({u"--version"_qs}, folder).out.startsWith("velquin "));
}

} // namespace
