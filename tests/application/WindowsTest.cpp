// Start-up, and the windows around the documents: preferences, about, the commands of the Help menu.
#include "ApplicationDelegate.h"
#include "Classes/SmallViews/XHrefButton.h"
#include "Platform/Core/UserDefaults.h"
#include "Product.h"
#include "application/FakeBrowser.h"
#include "shell/WindowFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItem>

using namespace Qt::StringLiterals;

namespace {

UpdateController::Configuration withoutFeed() {
    return {.feed = {}, .version = u"1.0"_qs, .downloads = {}};
}

TEST(StartUpTest, writesEachDefaultThatIsMissing) {
    const QStringList keys{u"SUEnableAutomaticChecks"_qs, u"SUSendProfileInfo"_qs, u"SnapshotsDirType"_qs,
                           u"SnapshotsDir"_qs, u"SnapshotsFormat"_qs};
    UserDefaults& defaults = UserDefaults::standard();
    for (const int format : {0, 1}) {
        defaults.useMemoryStore();
        if (format != 0)
            defaults.set(keys.last(), format);
        QStringList written;
        const auto seen =
            QObject::connect(&defaults, &UserDefaults::changed, [&](const QString& key) { written += key; });
        ApplicationDelegate application(withoutFeed());
        application.applicationDidFinishLaunching();
        QObject::disconnect(seen);
        EXPECT_EQ(written, format == 0 ? keys : keys.first(4));
        QVariantList values;
        for (const QString& key : keys)
            values += defaults.value(key);
        EXPECT_EQ(values, (QVariantList{1, 1, 2, QString(), format}));
        EXPECT_FALSE(application.plotInspectorVisible());
    }
    defaults.useMemoryStore();
    defaults.setReadOnly(true);
    ApplicationDelegate application(withoutFeed());
    application.applicationDidFinishLaunching();
    for (const QString& key : keys)
        EXPECT_FALSE(defaults.contains(key));
}

class ApplicationWindowsTest : public WindowFixture {
  protected:
    ApplicationWindowsTest() { application.applicationDidFinishLaunching(); }

    static UserDefaults& defaults() { return UserDefaults::standard(); }
    PreferencesWindowController& preferences() {
        application.showPreferencesWindow();
        return *application.pwc();
    }
    template <class Widget>
    Widget& control(const char* name) {
        return *preferences().window()->findChild<Widget*>(QLatin1String(name));
    }
    QStringList folders() {
        const auto& box = control<QComboBox>("folderBox");
        QStringList texts;
        for (int i = 0; i < box.count(); ++i)
            texts += box.itemText(i);
        return texts;
    }
    /// As if the row of that type were picked from the list.
    void pickFolder(int type) {
        auto& box = control<QComboBox>("folderBox");
        box.setCurrentIndex(box.findData(type));
        Q_EMIT box.activated(box.currentIndex());
        finishDeletions(); // the panel comes in the next turn
    }
    int type() { return defaults().integer(u"SnapshotsDirType"_qs); }
    int shownType() { return control<QComboBox>("folderBox").currentData().toInt(); }

    FakeBrowser browser;
    ApplicationDelegate application{withoutFeed()};
};

TEST_F(ApplicationWindowsTest, theFolderOfSnapshotsIsChosen) {
    EXPECT_EQ(folders(),
              (QStringList{u"Desktop"_qs, u"Velquin in Pictures"_qs, u"Documents"_qs, {}, u"Other…"_qs}));
    EXPECT_EQ(shownType(), 2);
    for (QStandardItem* item : {preferences().desktopDirMenuItem(), preferences().picturesDirMenuItem(),
                                preferences().documentsDirMenuItem()})
        EXPECT_FALSE(item->icon().isNull());
    pickFolder(3);
    EXPECT_EQ(type(), 3);

    pickFolder(-1); // cancelled
    EXPECT_EQ(panels.asked, 1);
    EXPECT_EQ(type(), 3);
    EXPECT_EQ(shownType(), 3);
    EXPECT_FALSE(defaults().contains(u"SnapshotsDirSecurityBookmark"_qs));

    const QString plots = folder.path(u"pl\u00f6ts"_qs);
    QDir().mkpath(plots);
    panels.paths = {plots};
    pickFolder(-1);
    EXPECT_EQ(panels.asked, 2);
    EXPECT_EQ(type(), 0);
    EXPECT_EQ(shownType(), 0);
    EXPECT_EQ(defaults().string(u"SnapshotsDir"_qs), plots);
    EXPECT_EQ(defaults().value(u"SnapshotsDirSecurityBookmark"_qs).toByteArray(), plots.toUtf8());
    EXPECT_EQ(folders().value(3), u"pl\u00f6ts"_qs);
    EXPECT_FALSE(preferences().customPlaceholderMenuItem()->icon().isNull());

    control<QPushButton>("openButton").click();
    EXPECT_EQ(browser.opened, QStringList{QUrl::fromLocalFile(plots).toString()});
    QDir().rmdir(plots);
    control<QPushButton>("openButton").click();
    EXPECT_EQ(alerts.messages, QStringList{u"“pl\u00f6ts” is not there."_qs});

    defaults().set(u"SnapshotsDir"_qs, QString());
    EXPECT_EQ(preferences().customPlaceholderMenuItem(), nullptr);
    EXPECT_EQ(control<QComboBox>("folderBox").currentIndex(), -1);
    control<QPushButton>("openButton").click(); // there is none: asks for one
    EXPECT_EQ(panels.asked, 3);
}

TEST_F(ApplicationWindowsTest, aChoiceThatWasCutShortIsNoFolder) {
    defaults().set(u"SnapshotsDirType"_qs, -1); // ended while the panel was open
    preferences();
    pickFolder(-1);
    EXPECT_EQ(panels.asked, 1);
    EXPECT_EQ(type(), 0);
}

TEST_F(ApplicationWindowsTest, settingsApplyAtOnceAndFollowOthers) {
    defaults().set(u"SnapshotsFormat"_qs, 2);
    auto& format = control<QComboBox>("formatBox");
    auto& recent = control<QSpinBox>("recentField");
    auto& updates = control<QCheckBox>("updatesBox");
    EXPECT_EQ(format.currentText(), u"JPEG"_qs);
    EXPECT_EQ(recent.value(), 15);
    EXPECT_FALSE(updates.isEnabled() || updates.isChecked() || updates.toolTip().isEmpty())
        << "there is no feed";
    format.setCurrentIndex(0);
    Q_EMIT format.activated(0);
    EXPECT_EQ(defaults().integer(u"SnapshotsFormat"_qs), 0);
    recent.selectAll();
    QTest::keyClicks(&recent, u"60"_qs); // 0 has no room
    EXPECT_FALSE(defaults().contains(u"MaxRecentFiles"_qs)) << "still typing";
    preferences().window()->close();
    EXPECT_EQ(defaults().integer(u"MaxRecentFiles"_qs), 6);
    defaults().set(u"MaxRecentFiles"_qs, 900);
    EXPECT_EQ(recent.value(), 50);

    PreferencesWindowController withFeed(true);
    auto* looks = withFeed.window()->findChild<QCheckBox*>(u"updatesBox"_qs);
    EXPECT_TRUE(looks->isEnabled() && looks->isChecked());
    looks->click();
    EXPECT_EQ(defaults().integer(u"SUEnableAutomaticChecks"_qs), 0);
}

TEST_F(ApplicationWindowsTest, eachWindowIsOneAndClosesByKeys) {
    using Show = void (ApplicationDelegate::*)();
    for (const Show show :
         {&ApplicationDelegate::onAboutPanel, &ApplicationDelegate::showPreferencesWindow}) {
        (application.*show)();
        QWidget* window =
            application.pwc() != nullptr ? application.pwc()->window() : application.controller()->window();
        EXPECT_FALSE(window->testAttribute(Qt::WA_QuitOnClose));
        for (const QKeySequence& keys : {QKeySequence(u"Esc"_qs), QKeySequence(u"Ctrl+W"_qs)}) {
            (application.*show)();
            EXPECT_TRUE(support::waitUntil([&] { return QApplication::activeWindow() == window; }));
            QTest::keySequence(window, keys);
            EXPECT_FALSE(window->isVisible()) << keys.toString().toStdString();
        }
    }
}

TEST_F(ApplicationWindowsTest, aboutNamesTheVersionAndLinksByMouseAndKeyboard) {
    application.onAboutPanel();
    AboutWindowController& about = *application.controller();
    EXPECT_EQ(about.versionLabel()->text(), u"Version "_qs + QLatin1String(Product::version));
    EXPECT_TRUE(support::waitUntil([&] { return about.window()->hasFocus(); }));
    QTest::keyClick(about.window(), Qt::Key_Tab);
    EXPECT_TRUE(about.siteLinkButton()->hasFocus());
    QTest::keyClick(about.siteLinkButton(), Qt::Key_Return);
    QTest::mouseClick(about.forumLinkButton(), Qt::LeftButton);
    EXPECT_EQ(browser.opened, (QStringList{QLatin1String(Product::site), QLatin1String(Product::forum)}));
}

TEST_F(ApplicationWindowsTest, menusReachTheApplicationWhereThereIsOne) {
    const char* names[] = {"communityForum",  "reportBug", "requestFeature",
                           "checkForUpdates", "about",     "preferences"};
    MoxDocumentWindow& alone = newWindow();
    MoxDocumentWindow& window = application.documents().newDocument();
    for (const char* name : names) {
        EXPECT_FALSE(alone.menus().action(name)->isEnabled()) << name;
        EXPECT_FALSE(alone.menus().action(name)->toolTip().isEmpty());
        EXPECT_TRUE(window.menus().action(name)->isEnabled()) << name;
        trigger(window, name);
    }
    EXPECT_EQ(browser.opened, (QStringList{QLatin1String(Product::forum), QLatin1String(Product::bugReports),
                                           QLatin1String(Product::featureRequests)}));
    EXPECT_EQ(alerts.messages, QStringList{u"The package manager updates Velquin."_qs});
    EXPECT_TRUE(application.controller()->window()->isVisible());
    EXPECT_TRUE(application.pwc()->window()->isVisible());

    alerts.messages.clear();
    FakeBrowser::quit();
    const support::ExpectedWarnings expected({u"does not support"_qs});
    trigger(window, "reportBug");
    EXPECT_EQ(alerts.messages, QStringList{u"No web browser was found."_qs});
    EXPECT_TRUE(alerts.reason.contains(QLatin1String(Product::bugReports)));
}

TEST_F(ApplicationWindowsTest, theStatusLineSaysThatItLooksAsLongAsItDoes) {
    const QUrl unreachable(u"http://127.0.0.1:1/"_qs);
    ApplicationDelegate looking({.feed = unreachable, .version = u"1.0"_qs, .downloads = {}});
    looking.applicationDidFinishLaunching();
    MoxDocumentWindow& window = looking.documents().newDocument();
    const QString before = window.statusLine().message();
    for (int i = 0; i < 2; ++i)
        trigger(window, "checkForUpdates");
    EXPECT_EQ(window.statusLine().message(), u"Looking for a new version…"_qs);
    EXPECT_TRUE(support::waitUntil([&] { return !alerts.messages.isEmpty(); }));
    EXPECT_EQ(window.statusLine().message(), before);
}

} // namespace
