// Data sources: settings, recent files, paths that cannot be read, reads that overlap, and the document's
// list of them.
#include "Classes/DataSourcesManager/XDataSourcesManager.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Core/XViewController.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cmath>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

/// Observes a source: its updates, and its observed keys in order.
class Watch {
  public:
    explicit Watch(XDataSourceProtocol& source)
        : m_update(NotificationCenter::defaultCenter().observe(Notifications::dataSourceUpdated, &source,
                                                               [this](QObject*) { ++updates; })) {
        m_keys = QObject::connect(&source, &Observable::keyChanged, [this](const KeyChange& change) {
            keys.append(QLatin1String(change.key));
        });
    }
    ~Watch() { QObject::disconnect(m_keys); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    int updates = 0;
    QStringList keys;

  private:
    NotificationCenter::Registration m_update;
    QMetaObject::Connection m_keys;
};

void finishReading(const XDataSourceProtocol& source) {
    ASSERT_TRUE(support::waitUntil([&] { return !source.isLoading(); }));
}

/// A text source that was read.
void readText(XPTextEditor& source, const QString& text) {
    source.setTextData(text);
    source.read();
    finishReading(source);
}

QVariantMap fileSettings(const QString& path, int delimiterType) {
    return {{QStringLiteral("Filename"), path}, {QStringLiteral("DelimiterType"), delimiterType}};
}

TEST(XPTextFile, TakesItsSettingsInTheirOrder) {
    XPTextFile source;
    const Watch watch(source);
    source.setPlist({{QStringLiteral("Filename"), QStringLiteral("/tmp/some/data.csv/")},
                     {QStringLiteral("EveryNthLine"), 1e300},
                     {QStringLiteral("ExtractColumnNames"), true}});
    EXPECT_EQ(source.title(), QStringLiteral("data.csv"));
    EXPECT_EQ(
        watch.keys.join(u' '),
        QStringLiteral(
            "title filename skiplines everyNthLine extractColumnNames delimiterType extractColumnNames"));
    EXPECT_TRUE(source.extractColumnNames()) << "kept: a header switch saved with type 0 stays on";
    EXPECT_EQ(source.everyNthLine(), std::numeric_limits<int>::max());
    EXPECT_EQ(source.plist()->value(QStringLiteral("Skiplines")), QVariant(0));

    source.setDelimiterType(3);
    EXPECT_TRUE(source.extractColumnNames());
    source.setDelimiterType(0);
    EXPECT_FALSE(source.extractColumnNames()) << "numbers have no header line";
    for (const char* key : {"skiplines", "everyNthLine", "extractColumnNames", "filename"})
        source.setNilValueForKey(key);
    EXPECT_EQ(source.everyNthLine(), 0);
    EXPECT_FALSE(source.filename().isEmpty()) << "only numbers and switches take nothing as 0";
}

TEST(XPTextFile, RemembersRecentFiles) {
    UserDefaults& defaults = UserDefaults::standard();
    const QString key = QStringLiteral("TextFilePluginRecentFiles");
    QStringList many;
    for (int i = 0; i < 20; ++i)
        many.append(QString::number(i));
    defaults.set(key, many);
    XPTextFile source;
    source.setFilename(QStringLiteral("new"));
    EXPECT_EQ(defaults.stringList(key), QStringList{QStringLiteral("new")} + many.mid(0, 15))
        << "kept: one more than the maximum";
    source.setFilename(QStringLiteral("3"));
    EXPECT_EQ(defaults.stringList(key).mid(0, 3).join(u','), QStringLiteral("3,new,0"));
    EXPECT_EQ(defaults.stringList(key).count(QStringLiteral("3")), 1);
    defaults.set(QStringLiteral("MaxRecentFiles"), 2);
    source.setFilename(QString());
    source.setFilename(QStringLiteral("x"));
    EXPECT_EQ(defaults.stringList(key).join(u','), QStringLiteral("x,3,new"));
}

TEST(XPTextFile, RefusesWhatIsNoFileAndKeepsItsTable) {
    const support::ScratchFolder folder;
    XPTextFile source;
    source.setPlist(fileSettings(folder.write(QStringLiteral("good"), "1,2\n"), 1));
    source.read();
    finishReading(source);
    const XTable table = source.data();
    ASSERT_NE(table, nullptr);

    const QByteArray fifo = folder.path(QStringLiteral("fifo")).toUtf8();
    ASSERT_EQ(mkfifo(fifo.constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("fifo")), folder.path(QStringLiteral("link"))));
    sockaddr_un address{AF_UNIX, {}};
    folder.path(QStringLiteral("s"))
        .toUtf8()
        .toStdString()
        .copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const QString secret = folder.write(QStringLiteral("secret"), "1\n");
    chmod(secret.toUtf8().constData(), 0);

    const std::pair<QString, const char*> rows[] = {
        {folder.path(QStringLiteral("missing")), "No such file or directory"},
        {folder.path(QStringLiteral("good/below")), "Not a directory"},
        {folder.path(), "Is a directory"},
        {QString(), "No file name"},
        {folder.path(QStringLiteral("fifo")), "Is not a regular file"},
        {folder.path(QStringLiteral("link")), "Is not a regular file"},
        {folder.path(QStringLiteral("s")), "Is not a regular file"},
        {QStringLiteral("/dev/null"), "Is not a regular file"},
        {QString(300, u'x'), "File name too long"},
        {secret, geteuid() == 0 ? "" : "Permission denied"}, // the superuser reads everything
    };
    for (const auto& [path, reason] : rows) {
        source.setFilename(path);
        source.read();
        finishReading(source);
        EXPECT_EQ(source.readError(), QLatin1String(reason)) << path.toStdString();
        EXPECT_EQ(source.data() == table, *reason != '\0') << path.toStdString();
    }
    close(listener);
}

TEST(XPTextFile, ReadsFilesOfAnyLength) {
    const support::ScratchFolder folder;
    XPTextFile source;
    source.setPlist(fileSettings(QStringLiteral("/proc/self/statm"), 0));
    source.read();
    finishReading(source);
    ASSERT_NE(source.data(), nullptr) << source.readError().toStdString();
    EXPECT_EQ(source.data()->columnsNumber(), 7U) << "a file without a size";

    qputenv("HOME", folder.path().toUtf8());
    folder.write(QStringLiteral("empty"), "");
    source.setFilename(QStringLiteral("~/empty"));
    source.read();
    finishReading(source);
    ASSERT_NE(source.data(), nullptr);
    EXPECT_EQ(source.data()->rowsNumber(), 1U);
    EXPECT_EQ(source.data()->columnsNumber(), 0U);

    source.setMemoryLimit(1000);
    source.setFilename(folder.write(QStringLiteral("long"), QByteArray("1\n").repeated(1000)));
    source.read();
    finishReading(source);
    EXPECT_EQ(source.readError(),
              QStringLiteral("line 126: the table would need 1 MB, more than the 0 MB it may take"));
    EXPECT_EQ(source.data()->columnsNumber(), 0U) << "the old table stays";
}

TEST(XPTextFile, MergesRequestsIntoOneRead) {
    const support::ScratchFolder folder;
    const QString path = folder.write(QStringLiteral("data"), QByteArray("1,2\n").repeated(300'000));
    XPTextFile source;
    source.setPlist(fileSettings(path, 1));
    const Watch watch(source);
    source.setSkiplines(1);
    source.read();
    source.setSkiplines(299'999);
    source.read();
    finishReading(source);
    EXPECT_EQ(watch.updates, 1) << "two settings changed before the start";
    EXPECT_EQ(source.data()->rowsNumber(), 1U);

    // A request while a read runs: the running one is cancelled, however far it came, and one more read
    // follows.
    source.setSkiplines(0);
    source.read();
    ASSERT_TRUE(support::waitUntil([&] { return !std::isnan(source.progress()); }));
    source.setSkiplines(299'998);
    source.read();
    source.read();
    finishReading(source);
    EXPECT_EQ(watch.updates, 3) << "the data are cleared, then replaced";
    EXPECT_EQ(source.data()->rowsNumber(), 2U);
    EXPECT_TRUE(std::isnan(source.progress()));
    EXPECT_EQ(watch.keys.last(), QStringLiteral("isLoading")) << "announced after the table was installed";
}

TEST(XPTextFile, StaysCleanWhenCleanedInTheMiddleOfARead) {
    const support::ScratchFolder folder;
    const QString path = folder.write(QStringLiteral("data"), QByteArray("1,2\n").repeated(300'000));
    XPTextFile source;
    source.setPlist(fileSettings(path, 1));
    for (const bool started : {false, true}) {
        source.read();
        if (started) {
            ASSERT_TRUE(support::waitUntil([&] { return !std::isnan(source.progress()); }));
        }
        const Watch watch(source);
        source.clean();
        finishReading(source);
        EXPECT_EQ(source.data(), nullptr);
        EXPECT_EQ(watch.updates, 1);
    }
    // An observer reads again, or lets go of the source, from within the hand-over.
    auto owned = std::make_unique<XPTextFile>();
    owned->setPlist(fileSettings(path, 1));
    int updates = 0;
    const auto registration = NotificationCenter::defaultCenter().observe(
        Notifications::dataSourceUpdated, owned.get(),
        [&](QObject*) { ++updates == 1 ? void(owned->read()) : owned.reset(); });
    owned->read();
    ASSERT_TRUE(support::waitUntil([&] { return owned == nullptr; }));
    EXPECT_EQ(updates, 2);
    // Destroyed while the thread runs.
    auto dropped = std::make_unique<XPTextFile>();
    dropped->setPlist(fileSettings(path, 1));
    dropped->read();
    ASSERT_TRUE(support::waitUntil([&] { return !std::isnan(dropped->progress()); }));
    dropped.reset();
}

TEST(XPTextFile, GoesBeforeTheReadThatWasAskedForBegins) {
    auto source = std::make_unique<XPTextFile>();
    auto table = std::make_shared<XPTableData>();
    table->writeNullAtColRow(0, 1 << 20); // so large that a thread gives it back
    const std::weak_ptr<XPTableData> released = table;
    source->setData(std::exchange(table, nullptr));
    source->setData(nullptr);
    source->read();
    source.reset();
    EXPECT_TRUE(support::waitUntil([&] { return released.expired(); }));
}

TEST(XPTextEditor, ReadsItsText) {
    XPTextEditor source;
    EXPECT_EQ(source.title(), QStringLiteral("Editor"));
    source.read();
    finishReading(source);
    EXPECT_EQ(source.data(), nullptr) << "no text at all";
    EXPECT_EQ(source.readError(), QString());
    EXPECT_FALSE(source.plist()->contains(QStringLiteral("Text")));

    source.setDelimiterType(4);
    source.setExtractColumnNames(true);
    readText(source, QStringLiteral("\ufeffx y\n1 2\n3 4"));
    ASSERT_NE(source.data(), nullptr);
    EXPECT_EQ(source.data()->column(1)[1], 4);
    EXPECT_EQ(source.columnNames().join(u'|'), QStringLiteral("Row number|\ufeffx|y"));
    readText(source, QStringLiteral("a\n1 2"));
    EXPECT_EQ(source.columnNames().join(u'|'), QStringLiteral("Row number|a|Column 2"));
    readText(source, QString());
    EXPECT_EQ(source.data()->columnsNumber(), 0U) << "an empty text is an empty table";

    XPTextEditor copy;
    copy.setPlist(*source.plist());
    EXPECT_EQ(copy.plist(), source.plist());
    copy.setPlist({});
    EXPECT_EQ(copy.title(), QStringLiteral("Editor"));
    EXPECT_FALSE(copy.textData().has_value());
}

/// A kind of source without settings.
class BareSource : public XPTextEditor {
  public:
    QString pluginIdentifier() const override { return QStringLiteral("test.bare"); }
    std::optional<QVariantMap> plist() const override { return std::nullopt; }
    bool read() override {
        ADD_FAILURE() << "a source without settings is not read";
        return true;
    }
};

class BareFactory : public XPluginFactory {
  public:
    QMap<QString, QString> supportedPlugins() const override {
        return {{QStringLiteral("test.bare"), QStringLiteral("Bare")},
                {QStringLiteral("test.failing"), QStringLiteral("Failing")}};
    }
    XDataSource createPluginOfIdentifier(const QString& identifier) const override {
        return identifier == QLatin1String("test.bare") ? std::make_shared<BareSource>() : nullptr;
    }
};

TEST(XDataSourcesManager, LoadsWhatItSaved) {
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>(), std::make_shared<BareFactory>()});
    EXPECT_EQ(XPluginsManager::sharedInstance().pluginTypes().value(QStringLiteral("com.quarnix.texteditor")),
              QStringLiteral("Text Editor"));
    int added = 0;
    const auto registration = NotificationCenter::defaultCenter().observe(
        Notifications::dataSourceWasAdded, nullptr, [&](QObject*) { ++added; });
    XDataSourcesManager manager;
    auto editor = std::make_shared<XPTextEditor>();
    editor->setTextData(QStringLiteral("5"));
    manager.addDataSourceAtIndex(editor, 0);
    manager.addDataSourceAtIndex(std::make_shared<BareSource>(), 0);
    EXPECT_EQ(added, 0);
    const QVariantList saved = manager.plist();
    EXPECT_EQ(saved[0].toMap(),
              (QVariantMap{{QStringLiteral("PluginIdentifier"), QStringLiteral("test.bare")}}));

    XDataSourcesManager again;
    again.loadFromPlist(saved);
    EXPECT_EQ(again.plist(), saved);
    EXPECT_EQ(added, 2);
    finishReading(*again.dataSourceAtIndex(1));
    EXPECT_EQ(again.dataSourceAtIndex(1)->data()->column(0)[0], 5) << "with settings it reads at once";
    XDataSourcesManager empty;
    empty.loadFromPlist(QVariantList());
    EXPECT_TRUE(empty.dataSources().empty());
    EXPECT_EQ(added, 2);

    int changedRow = -1;
    QObject::connect(&manager.arrayController(), &QAbstractItemModel::dataChanged, &manager.arrayController(),
                     [&](const QModelIndex& index) { changedRow = index.row(); });
    editor->setTitle(QStringLiteral("Mine"));
    EXPECT_EQ(changedRow, 1);
    EXPECT_EQ(manager.arrayController().index(1).data().toString(), QStringLiteral("Mine"));
}

TEST(XDataSourcesManager, FailsItsAssertions) {
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>(), std::make_shared<BareFactory>()});
    const support::AssertionRecorder recorder;
    XDataSourcesManager manager;
    EXPECT_EQ(manager.dataSourceAtIndex(0), nullptr);
    manager.removeDataSourceAtIndex(3);
    manager.loadFromPlist(QStringLiteral("text"));
    manager.loadFromPlist(
        QVariantList{QVariantMap{{QStringLiteral("PluginIdentifier"), QStringLiteral("nosuchkind")}}, 7});
    EXPECT_EQ(
        XPluginsManager::sharedInstance().createPluginOfTypeSettings(QStringLiteral("test.failing"), {}),
        nullptr);
    EXPECT_EQ(XPTextFileFactory().createPluginOfIdentifier(QStringLiteral("x")), nullptr);
    EXPECT_TRUE(manager.dataSources().empty());
    EXPECT_EQ(recorder.texts(),
              (std::vector<std::string>{
                  "Bad index 0 for dataSourceAtIndex", "Bad index 3 for removeDataSourceAtIndex",
                  "dataSources plist is not NSArray!", "Unknown plugin type \"nosuchkind\"",
                  "Unknown plugin type \"\"", "Failed to create plugin of type \"test.failing\"",
                  "Unknown plugin id for XPTextFileFactory: x"}));
    EXPECT_EQ(recorder.failures().back().sourcePath, "EmbeddedPlugins/TextFile/XPTextFile");
}

} // namespace
