// Colours in property lists, and the folder for snapshots.
#include "Classes/ValueEncodings/ColorEncoding.h"
#include "Classes/ValueEncodings/XVelquin.h"
#include "Platform/Core/UserDefaults.h"
#include "support/TestSupport.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(ColorEncoding, keepsFourRealsAndReadsAnythingElseAsBlack) {
    const RgbaColor color{0.1, 1.0 / 3, -2, 7};
    EXPECT_EQ(ColorEncoding::colorFromPlist(ColorEncoding::plist(color)), color);
    EXPECT_EQ(ColorEncoding::colorName({0, 0.25, 0}), u"Dark green"_qs);

    struct Row {
        const char* name;
        QVariant plist;
        QString line;
    };
    const std::vector<Row> rows{
        {"three numbers", QVariantList{0.5, 1, 0}, u"Wrong NSColor plist: @[\n@0.5, \n@1, \n@0]"_qs},
        {"five numbers", QVariantList{1, 1, 1, 1, 1},
         u"Wrong NSColor plist: @[\n@1, \n@1, \n@1, \n@1, \n@1]"_qs},
        {"a text", u"red"_qs, u"NSColor plist is not an array: 'red'"_qs},
        {"nothing", QVariant(), u"NSColor plist is not an array: '(null)'"_qs},
    };
    for (const Row& row : rows) {
        const support::LogRecorder log;
        EXPECT_EQ(ColorEncoding::colorFromPlist(row.plist), (RgbaColor{0, 0, 0, 1})) << row.name;
        ASSERT_EQ(log.lines().size(), 1) << row.name;
        EXPECT_TRUE(log.lines().front().endsWith(row.line)) << log.lines().front().toStdString();
    }
}

class EnvironmentVariable {
  public:
    EnvironmentVariable(const char* name, const QString& value) : m_name(name), m_previous(qgetenv(name)) {
        qputenv(m_name, value.toUtf8());
    }
    ~EnvironmentVariable() { m_previous.isNull() ? qunsetenv(m_name) : qputenv(m_name, m_previous); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  private:
    const char* m_name;
    QByteArray m_previous;
};

TEST(XVelquin, theSnapshotsFolderFollowsTheUserDefaults) {
    const support::ScratchFolder home;
    const EnvironmentVariable homeVariable("HOME", home.path());
    const EnvironmentVariable configVariable("XDG_CONFIG_HOME", home.path());
    home.write(u"user-dirs.dirs"_qs, "XDG_DESKTOP_DIR=\"$HOME/Bureau\"\nXDG_PICTURES_DIR=\"$HOME/Images\"\n");
    UserDefaults& defaults = UserDefaults::standard();
    const auto folderOfType = [&](int type) {
        defaults.set(u"SnapshotsDirType"_qs, type);
        return XVelquin::snapshotsDirectory();
    };
    EXPECT_EQ(XVelquin::snapshotsDirectory(), std::nullopt); // no defaults at all
    defaults.set(u"SnapshotsDir"_qs, u"/srv/plots"_qs);
    for (const int type : {0, 5, -1})
        EXPECT_EQ(folderOfType(type), u"/srv/plots"_qs) << type;
    EXPECT_EQ(folderOfType(1), home.path(u"Bureau"_qs));
    EXPECT_EQ(folderOfType(3), home.path(u"Documents"_qs));
    for (const int type : {2, 4})
        EXPECT_EQ(folderOfType(type), home.path(u"Images/Velquin"_qs)) << type;
    EXPECT_TRUE(QFileInfo(home.path(u"Images/Velquin"_qs)).isDir());

    home.write(u"user-dirs.dirs"_qs, "XDG_PICTURES_DIR=\"$HOME/user-dirs.dirs\"\n"); // a file in the way
    const support::LogRecorder log;
    EXPECT_EQ(folderOfType(2), std::nullopt);
    EXPECT_TRUE(log.lines().join(u'\n').endsWith(
        u"Failed to create directory %1/user-dirs.dirs/Velquin: Not a directory"_qs.arg(home.path())))
        << log.lines().join(u'\n').toStdString();
}

} // namespace
