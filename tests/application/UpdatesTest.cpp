// Versions, the feed of releases, and checks against servers that behave well, badly and not at all.
#include "Classes/Updates/UpdateController.h"
#include "Platform/Core/UserDefaults.h"
#include "application/FakeBrowser.h"
#include "shell/WindowFixture.h"

#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

TEST(VersionTest, areOrderedAsTheyWereReleased) {
    const QStringList ascending = u"0.9 1.0-alpha 1.0-alpha.2 1.0-alpha.10 1.0-beta 1.0rc1 1.0 1.0.1 v1.1-2 "
                                  "1.1-beta 1.1-beta2 1.1-beta10 1.1 1.9 1.10 2.0+b1 2.0.0.0.0.1 20260101 "
                                  "99999999999999999999.1"_qs.split(u' ');
    for (qsizetype i = 1; i < ascending.size(); ++i) {
        SCOPED_TRACE(ascending[i].toStdString());
        const auto lower = Version::parse(ascending[i - 1]);
        const auto upper = Version::parse(ascending[i]);
        ASSERT_TRUE(lower && upper);
        EXPECT_TRUE(*lower < *upper);
        EXPECT_TRUE(*upper > *lower);
        EXPECT_FALSE(*upper == *lower);
    }
    for (const auto& [a, b] : {std::pair("1.0", "1.0.0"),
                               {"v1.02", "1.2"},
                               {"0", "0.0"},
                               {"1.0+a", "1.0+b"},
                               {"1.1RC1", "1.1-rc1"}})
        EXPECT_EQ(Version::parse(QLatin1String(a)), Version::parse(QLatin1String(b))) << a;
    for (const char* garbage :
         {"", " ", "v", "one", "1.", "1..2", ".1", "1.0 2", "1.0-", "-1", "1,2", "1.0<b>", "\xd9\xa1.0"})
        EXPECT_FALSE(Version::parse(QString::fromUtf8(garbage))) << garbage;
    EXPECT_FALSE(Version::parse(QString(65, u'1')));
}

QByteArray feed(const QByteArray& items) {
    return "<?xml version=\"1.0\"?><rss version=\"2.0\" "
           "xmlns:s=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
           "<channel><title>Velquin 77.7</title>" +
           items + "</channel></rss>";
}

QByteArray titled(const QByteArray& title, const QByteArray& link = {}) {
    return "<item><title>" + title + "</title><link>" + link + "</link></item>";
}

struct FeedRow {
    const char* name;
    QByteArray bytes;
    const char* version; ///< or null
    const char* pageOrError;
};

TEST(ReleaseFeedTest, theGreatestVersionWins) {
    const QByteArray deep = QByteArray("<a>").repeated(40);
    const FeedRow rows[] = {
        {"titles",
         feed(titled("Velquin 1.9", "https://x/9") + titled("Velquin 1.10 (3 fixes)", "https://x/10") +
              titled("Velquin 1.2")),
         "1.10", "https://x/10"},
        {"a number alone", feed(titled("Velquin 3")), "3", ""},
        {"attributes, short first",
         feed("<item><title>9.9</title><enclosure s:version='2041' s:shortVersionString='2.1'/></item>"),
         "2.1", ""},
        {"elements",
         feed("<item><s:version>2.2</s:version><description><title>8.8</title></description></item>"), "2.2",
         ""},
        {"a prefix of another namespace",
         feed("<item xmlns:q='urn:q'><enclosure q:version='9'/><title>1.1</title></item>"), "1.1", ""},
        {"other systems",
         feed("<item><enclosure s:version='9.0' s:os='windows'/></item><item><enclosure s:version='2.0' "
              "s:os='Linux'/></item>"),
         "2.0", ""},
        {"a page that is a file", feed(titled("1.5", "file:///etc/passwd")), "1.5", ""},
        {"a page that is a script", feed(titled("1.5", "javascript:alert(1)")), "1.5", ""},
        {"a page with a password", feed(titled("1.5", "https://velquin@evil.example/")), "1.5", ""},
        {"no items", feed(""), nullptr, "it names no version"},
        {"no version", feed(titled("News")), nullptr, "it names no version"},
        {"a web page", "<!DOCTYPE html><html></html>", nullptr, "it is no feed of releases"},
        {"another feed", "<feed xmlns='http://www.w3.org/2005/Atom'/>", nullptr, "it is no feed of releases"},
        {"entities", "<!DOCTYPE rss [<!ENTITY a '1.0'>]><rss><channel>" + titled("&a;") + "</channel></rss>",
         nullptr, "it is no feed of releases"},
        {"unknown entity", feed(titled("&a;")), nullptr, "line 1 is malformed"},
        {"cut off", feed(titled("1.1")).chopped(10), nullptr, "line 1 is malformed"},
        {"nothing", "", nullptr, "line 1 is malformed"},
        {"bytes", QByteArray::fromHex("00ff00ff1b"), nullptr, "line 1 is malformed"},
        {"deep", feed("<item>" + deep), nullptr, "it is nested too deeply"},
        {"many items", feed(titled("1.1").repeated(1001)), nullptr, "it has too many items"},
        {"huge", feed(titled("1.1") + QByteArray(1 << 20, ' ')), nullptr, "it is larger than 1 MiB"},
    };
    for (const FeedRow& row : rows) {
        SCOPED_TRACE(row.name);
        const ReleaseFeed::ReadResult result = ReleaseFeed::read(row.bytes);
        ASSERT_EQ(result.newest.has_value(), row.version != nullptr) << result.error.toStdString();
        if (result.newest) {
            EXPECT_EQ(result.newest->version.text(), QLatin1String(row.version));
            EXPECT_EQ(result.newest->page.toString(), QLatin1String(row.pageOrError));
            EXPECT_EQ(result.error, QString());
        } else {
            EXPECT_TRUE(result.error.startsWith(QLatin1String(row.pageOrError)))
                << result.error.toStdString();
        }
    }
}

/// Answers by path; a path without an answer keeps its client waiting.
class WebServer {
  public:
    WebServer() {
        EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost));
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            QTcpSocket* socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::disconnected, [this] { ++hungUp; });
            QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
                if (!socket->peek(1 << 16).contains("\r\n\r\n"))
                    return;
                requests += socket->readAll();
                socket->write(answers.value(requests.last().split(' ').value(1)));
                if (answers.contains(requests.last().split(' ').value(1)))
                    socket->disconnectFromHost();
            });
        });
    }
    QUrl url(const QString& path) const {
        return QUrl(u"http://127.0.0.1:%1%2"_qs.arg(m_server.serverPort()).arg(path));
    }
    void serve(const QByteArray& path, const QByteArray& body) {
        answers[path] =
            "HTTP/1.1 200 OK\r\nSet-Cookie: id=7\r\nContent-Length: " + QByteArray::number(body.size()) +
            "\r\n\r\n" + body;
    }
    void redirect(const QByteArray& path, const QByteArray& target) {
        answers[path] =
            "HTTP/1.1 302 Found\r\nSet-Cookie: id=7\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n";
    }

    QHash<QByteArray, QByteArray> answers;
    QList<QByteArray> requests;
    int hungUp = 0;

  private:
    QTcpServer m_server;
};

class UpdateControllerTest : public testing::Test {
  protected:
    UpdateControllerTest() {
        server.serve("/newer", feed(titled("Velquin 1.10", "https://x/10")));
        server.serve("/pageless", feed(titled("Velquin 1.10", "ftp://x/")));
        server.serve("/same", feed(titled("Velquin 1.9.0")));
        server.serve("/older", feed(titled("Velquin 1.8")));
        server.serve("/malformed", "<rss");
        server.serve("/huge", feed(QByteArray(2 << 20, ' ')));
        server.redirect("/moved", "/newer");
        server.redirect("/toFile", "file:///etc/passwd");
        server.redirect("/loop", "/loop");
        server.answers["/gone"] = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";
        server.answers["/halved"] = "HTTP/1.1 200 OK\r\nContent-Length: 900\r\n\r\n" + feed(titled("1.10"));
    }

    std::unique_ptr<UpdateController>
    controllerFor(const QUrl& feedAddress, std::chrono::milliseconds time = std::chrono::seconds(15)) {
        return std::make_unique<UpdateController>(
            UpdateController::Configuration{
                feedAddress, u"1.9"_qs, QUrl(u"https://velquin/downloads"_qs), {.time = time}},
            [this] { return &window; });
    }
    void check(const QUrl& feedAddress) {
        const auto controller = controllerFor(feedAddress);
        alerts.messages.clear();
        controller->checkForUpdates(&window);
        EXPECT_TRUE(support::waitUntil([&] { return !controller->isChecking(); }));
    }

    WebServer server;
    FakeAlerts alerts;
    FakeBrowser browser;
    QWidget window;
};

TEST_F(UpdateControllerTest, whoAsksIsAnswered) {
    const auto isAvailable = u"Velquin 1.10 is available."_qs;
    const auto isNewest = u"Velquin 1.9 is the newest version."_qs;
    const auto wasNotRead = u"The list of releases was not read."_qs;
    const std::tuple<QString, QString, QString> rows[] = {
        {u"/newer"_qs, isAvailable, u"You have 1.9. The download page opens in the web browser."_qs},
        {u"/moved"_qs, isAvailable, u"You have 1.9."_qs},
        {u"/same"_qs, isNewest, {}},
        {u"/older"_qs, isNewest, {}},
        {u"/malformed"_qs, wasNotRead, u"line 1 is malformed"_qs},
        {u"/huge"_qs, wasNotRead, u"it is larger than 1024 KiB"_qs},
        {u"/toFile"_qs, wasNotRead, u"“file:///etc/passwd”, which is not followed"_qs},
        {u"/loop"_qs, wasNotRead, u"without an end"_qs},
        {u"/gone"_qs, wasNotRead, u"status 404"_qs},
        {u"/halved"_qs, wasNotRead, u"closed"_qs},
    };
    for (const auto& [path, message, reason] : rows) {
        SCOPED_TRACE(path.toStdString());
        check(server.url(path));
        EXPECT_EQ(alerts.messages, QStringList{message});
        EXPECT_TRUE(alerts.reason.contains(reason)) << alerts.reason.toStdString();
        EXPECT_EQ(alerts.reason.contains(server.url(path).toString()), message == wasNotRead);
    }
    EXPECT_EQ(std::count_if(server.requests.begin(), server.requests.end(),
                            [](const QByteArray& each) { return each.startsWith("GET /loop "); }),
              6);
    for (const auto& [address, reason] : {std::pair(u"http://127.0.0.1:1/feed"_qs, u"Connection refused"_qs),
                                          {u"file:///etc/passwd"_qs, u"no address of the web"_qs}}) {
        check(QUrl(address));
        EXPECT_EQ(alerts.messages, QStringList{wasNotRead});
        EXPECT_TRUE(alerts.reason.contains(reason)) << alerts.reason.toStdString();
    }
    check({}); // no feed at all
    EXPECT_EQ(alerts.messages, QStringList{u"The package manager updates Velquin."_qs});
}

TEST(FeedDownloadTest, leadsToWhatIsAsSafe) {
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"http://a/", "http://b/", true},       {"http://a/", "https://b/", true},
        {"https://a/", "https://b/", true},     {"https://a/", "http://b/", false},
        {"http://a/", "file:///b", false},      {"http://a/", "ftp://b/", false},
        {"http://a/", "https://u:p@b/", false}, {"http://a/", "https:///b", false}};
    for (const auto& [from, to, leads] : rows)
        EXPECT_EQ(FeedDownload::mayLeadTo(QUrl(QLatin1String(from)), QUrl(QLatin1String(to))), leads)
            << from << " " << to;
}

TEST_F(UpdateControllerTest, theRequestTellsNothingOfTheUser) {
    check(server.url(u"/moved"_qs));
    ASSERT_EQ(server.requests.size(), 2);
    for (const QByteArray& request : server.requests) {
        QStringList names;
        for (const QByteArray& line : request.trimmed().split('\n').mid(1))
            names += QString::fromLatin1(line.split(':').first()).toLower();
        names.sort();
        EXPECT_EQ(names.join(u' ').toStdString(),
                  "accept accept-encoding accept-language cache-control connection host pragma user-agent");
        EXPECT_TRUE(request.contains("User-Agent: Velquin/1.9\r\n"));
        EXPECT_TRUE(request.contains("Accept-Language: *\r\n"));
        EXPECT_FALSE(request.left(request.indexOf('\r')).contains('?'));
    }
}

TEST_F(UpdateControllerTest, thePageOpensOnWish) {
    for (const auto& [path, answer] : {std::pair(u"/newer"_qs, 0), {u"/newer"_qs, 1}, {u"/pageless"_qs, 0}}) {
        alerts.plan = {answer};
        check(server.url(path));
    }
    EXPECT_EQ(browser.opened, (QStringList{u"https://x/10"_qs, u"https://velquin/downloads"_qs}));
}

TEST_F(UpdateControllerTest, aSlowServerIsLeft) {
    const auto controller = controllerFor(server.url(u"/never"_qs), std::chrono::milliseconds(50));
    controller->checkForUpdates(&window);
    EXPECT_TRUE(support::waitUntil([&] { return !controller->isChecking(); }));
    EXPECT_TRUE(alerts.reason.contains(u"did not answer in time"_qs)) << alerts.reason.toStdString();

    alerts.messages.clear();
    server.requests.clear();
    server.hungUp = 0;
    auto ended = controllerFor(server.url(u"/never"_qs));
    ended->checkForUpdates(&window);
    EXPECT_TRUE(support::waitUntil([&] { return !server.requests.isEmpty(); }));
    ended.reset(); // the program ends
    EXPECT_TRUE(support::waitUntil([&] { return server.hungUp == 1; }));
    EXPECT_EQ(alerts.messages, QStringList());
}

TEST_F(UpdateControllerTest, looksByItselfOnceADayAndSpeaksOfNewsAlone) {
    UserDefaults& defaults = UserDefaults::standard();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const auto checks = [&](UpdateController& controller, const QDateTime& when) {
        const qsizetype before = server.requests.size();
        controller.checkIfDue(when);
        EXPECT_TRUE(support::waitUntil([&] { return !controller.isChecking(); }));
        return server.requests.size() > before;
    };
    const auto first = controllerFor(server.url(u"/newer"_qs));
    defaults.set(u"SUEnableAutomaticChecks"_qs, 1);
    EXPECT_FALSE(checks(*first, now)) << "never during the first start";
    EXPECT_FALSE(checks(*first, now.addDays(2)));

    const auto second = controllerFor(server.url(u"/newer"_qs));
    EXPECT_TRUE(checks(*second, now));
    EXPECT_EQ(alerts.messages.size(), 1);
    EXPECT_FALSE(checks(*second, now.addSecs(86000)));
    EXPECT_TRUE(checks(*second, now.addSecs(86500)));
    EXPECT_EQ(alerts.messages.size(), 1) << "each version is told once a run";
    EXPECT_TRUE(checks(*second, now.addDays(-3))) << "the clock was put back";
    defaults.set(u"SUEnableAutomaticChecks"_qs, 0);
    EXPECT_FALSE(checks(*second, now.addDays(9)));
    defaults.set(u"SUEnableAutomaticChecks"_qs, 1);

    for (const auto& path : {u"/same"_qs, u"/malformed"_qs, u"/gone"_qs})
        EXPECT_TRUE(checks(*controllerFor(server.url(path)), now.addDays(9)));
    EXPECT_EQ(alerts.messages.size(), 1);

    const auto asked = controllerFor(server.url(u"/same"_qs));
    asked->checkIfDue(now.addDays(9));
    asked->checkForUpdates(&window); // while it looks by itself: one request, and an answer
    EXPECT_TRUE(support::waitUntil([&] { return !asked->isChecking(); }));
    EXPECT_EQ(alerts.messages.last(), u"Velquin 1.9 is the newest version."_qs);
}

} // namespace
