// One program for each user and display: the messages, the place, who is first, and what strangers can do.
#include "Classes/SingleInstance/InstanceServer.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QLocalSocket>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using InstanceMessage::Kind;
using InstanceMessage::Taken;
using support::ScratchFolder;
using support::waitUntil;

namespace {

const InstanceRequest aRequest{u"/home/user/Häfen"_qs,
                               u"token"_qs,
                               u"id_TIME7"_qs,
                               {u"--title"_qs, u"\"x\"\n"_qs, QString(), u"a b.mox"_qs}};

QByteArray requestFrame() {
    return *InstanceMessage::encoded(aRequest);
}

// --- Messages

TEST(InstanceMessageTest, aRequestArrivesWholeHoweverItIsCutUp) {
    const QByteArray whole = requestFrame();
    InstanceMessage::Frame frame{};
    for (qsizetype size = 0; size < whole.size(); ++size) {
        QByteArray part = whole.first(size);
        ASSERT_EQ(InstanceMessage::takeFrame(part, frame), Taken::Incomplete) << size;
        ASSERT_EQ(part.size(), size);
    }
    QByteArray two = whole + whole.first(20);
    ASSERT_EQ(InstanceMessage::takeFrame(two, frame), Taken::Whole);
    EXPECT_EQ(two, whole.first(20));
    ASSERT_EQ(frame.kind, Kind::Request);
    const auto request = InstanceMessage::decodedRequest(frame.payload);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->workingFolder, aRequest.workingFolder);
    EXPECT_EQ(request->activationToken, aRequest.activationToken);
    EXPECT_EQ(request->startupId, aRequest.startupId);
    EXPECT_EQ(request->arguments, aRequest.arguments);
}

TEST(InstanceMessageTest, anythingElseIsRefused) {
    const auto taken = [](QByteArray bytes) {
        InstanceMessage::Frame frame{};
        return InstanceMessage::takeFrame(bytes, frame);
    };
    const auto changed = [](qsizetype at, char byte) {
        QByteArray bytes = requestFrame();
        bytes[at] = byte;
        return bytes;
    };
    EXPECT_EQ(taken("G"), Taken::Broken);
    EXPECT_EQ(taken("VlqnX"), Taken::Incomplete);
    EXPECT_EQ(taken(changed(5, 2)), Taken::Broken) << "another version";
    EXPECT_EQ(taken(changed(7, 9)), Taken::Broken) << "an unknown kind";
    EXPECT_EQ(taken(changed(9, 16)), Taken::Broken) << "over a mebibyte";

    const QByteArray payload = requestFrame().sliced(12);
    EXPECT_TRUE(InstanceMessage::decodedRequest(payload));
    for (qsizetype size = 0; size < payload.size(); ++size)
        ASSERT_FALSE(InstanceMessage::decodedRequest(payload.first(size))) << size;
    EXPECT_FALSE(InstanceMessage::decodedRequest(payload + 'x')) << "too long";
    for (const char byte : {'\0', '\xff'}) { // within a text
        QByteArray wrong = payload;
        wrong[payload.indexOf("token")] = byte;
        EXPECT_FALSE(InstanceMessage::decodedRequest(wrong));
    }
    QByteArray manyTexts = payload;
    manyTexts.replace(payload.indexOf(QByteArray("\0\0\0\4\0\0\0\7--title", 15)), 4, "\xff\xff\xff\xff");
    EXPECT_FALSE(InstanceMessage::decodedRequest(manyTexts));
    EXPECT_FALSE(InstanceMessage::decodedRequest(InstanceMessage::encoded(InstanceRequest{})->sliced(12)))
        << "no folder";
    EXPECT_FALSE(InstanceMessage::decodedReply(InstanceMessage::encoded(InstanceReply{256, {}}).sliced(12)));
}

TEST(InstanceMessageTest, noFrameIsTooLarge) {
    InstanceRequest request = aRequest;
    request.arguments += QString(InstanceMessage::largestFrame, u'x');
    EXPECT_FALSE(InstanceMessage::encoded(request));
    const QString error(InstanceMessage::largestFrame / 3, u'x');
    const QByteArray reply = InstanceMessage::encoded(InstanceReply{1, {error, error, error}});
    EXPECT_LE(reply.size(), InstanceMessage::largestFrame);
    const auto decoded = InstanceMessage::decodedReply(reply.sliced(12));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->exitCode, 1);
    EXPECT_EQ(decoded->errors.size(), 2);
}

// --- The place

InstanceSurroundings surroundings(const QByteArray& runtime, const QByteArray& temporary) {
    return {.runtimeFolder = runtime,
            .temporaryFolder = temporary,
            .waylandDisplay = {},
            .x11Display = ":7",
            .platform = {},
            .user = ::geteuid()};
}

TEST(InstancePlaceTest, isNamedAfterTheDisplay) {
    const auto nameOf = [](const char* wayland, const char* x11, const char* platform) {
        return instanceName({{}, {}, wayland, x11, platform, 0}).value_or("none").toStdString();
    };
    EXPECT_EQ(nameOf("", ":7", ""), nameOf("", ":7.0", "xcb"));
    EXPECT_NE(nameOf("", ":7", ""), nameOf("", ":70", ""));
    EXPECT_NE(nameOf("", ":7", ""), nameOf("", ":7.1", ""));
    EXPECT_NE(nameOf("", "/a", ""), nameOf("", "_2Fa", "")) << "names do not meet by their spelling";
    EXPECT_EQ(nameOf("wayland-0", ":7", ""), nameOf("wayland-0", "", ""));
    EXPECT_EQ(nameOf("wayland-0", ":7", "xcb"), nameOf("", ":7", ""));
    EXPECT_EQ(nameOf("wayland-0", ":7", "offscreen"), "none");
    EXPECT_EQ(nameOf("", "", ""), "none");
    const std::string slashes = nameOf("../../run/other", "", "");
    EXPECT_EQ(slashes.find('/'), std::string::npos) << slashes;
    EXPECT_LE(nameOf("", QByteArray(300, 'x').constData(), "").size(), 40U);
}

TEST(InstancePlaceTest, isAFolderThatIsSurelyTheUsersAlone) {
    const ScratchFolder scratch; // which is private itself
    const QByteArray folder = scratch.path().toUtf8();
    const auto placed = [&](mode_t mode, uid_t user) {
        const QByteArray temporary = folder + "/tmp";
        ::mkdir(temporary.constData(), 0700);
        ::chmod(temporary.constData(), mode);
        InstanceSurroundings with = surroundings(folder + "/nosuch", temporary);
        with.user = user;
        return instancePlace(with).has_value();
    };
    const uid_t me = ::geteuid();
    EXPECT_EQ(instancePlace(surroundings(folder, "/nosuch"))->socket, folder + "/velquin/x11_20:7");
    ::chmod((folder + "/velquin").constData(), 0770);
    EXPECT_FALSE(instancePlace(surroundings(folder, "/nosuch"))) << "others may enter";
    ::chmod((folder + "/velquin").constData(), 0700);
    EXPECT_FALSE(instancePlace(surroundings("relative", "/nosuch")));
    EXPECT_TRUE(placed(01777, me));
    EXPECT_FALSE(placed(0777, me)) << "others may take the folder away";
    EXPECT_FALSE(placed(0700, me + 1)) << "somebody else's";

    const QByteArray fallback = folder + "/tmp/velquin-" + QByteArray::number(me);
    ASSERT_TRUE(placed(0700, me));
    ASSERT_EQ(::rmdir(fallback.constData()), 0);
    ASSERT_EQ(::symlink(folder.constData(), fallback.constData()), 0);
    EXPECT_FALSE(placed(0700, me)) << "a link";
    EXPECT_FALSE(instancePlace(surroundings("/nosuch", folder + '/' + QByteArray(100, 'x')))) << "too long";
}

// --- Conversations

constexpr InstancePatience shortly{.start = 100ms, .answer = 100ms, .work = 100ms};
constexpr InstancePatience long_{.start = 20s, .answer = 20s, .work = 20s};

class SingleInstanceTest : public testing::Test {
  protected:
    InstanceLock lock() const { return *InstanceLock::at(place); }
    /// Takes the lock and listens; requests are written down and answered with 3.
    void startFirst(std::chrono::milliseconds patience = InstanceServer::usualPatience) {
        auto claim = claimInstance(place, aRequest, shortly);
        ASSERT_TRUE(std::holds_alternative<IsFirst>(claim));
        server.emplace(place, std::move(std::get<IsFirst>(claim).lock), patience);
        ASSERT_TRUE(server->listen([this](const InstanceRequest& request) {
            served += request.arguments;
            meanwhile();
            return InstanceReply{3, {u"no.mox: gone"_qs}};
        }));
    }
    std::future<InstanceClaim> launch(const InstancePatience& patience = long_) {
        return std::async(std::launch::async, claimInstance, place, aRequest, patience);
    }
    InstanceClaim claimOf(std::future<InstanceClaim>& launch) {
        EXPECT_TRUE(waitUntil([&] { return launch.wait_for(0s) == std::future_status::ready; }));
        return launch.get();
    }
    /// Connects as anybody could and says `bytes`; whether the server hung up without an answer.
    bool isHungUpOn(const QByteArray& bytes) {
        QLocalSocket stranger;
        stranger.connectToServer(QFile::decodeName(place.socket));
        EXPECT_TRUE(stranger.waitForConnected());
        stranger.write(bytes);
        EXPECT_TRUE(waitUntil([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
        return stranger.bytesAvailable() == 0;
    }

    ScratchFolder folder;
    InstancePlace place = *instancePlace(surroundings(folder.path().toUtf8(), {}));
    std::optional<InstanceServer> server;
    QList<QStringList> served;
    std::function<void()> meanwhile = [] {}; ///< happens in the middle of a request
};

TEST_F(SingleInstanceTest, aSecondLaunchIsServedByTheFirst) {
    startFirst();
    auto second = launch();
    const InstanceClaim claim = claimOf(second);
    ASSERT_TRUE(std::holds_alternative<InstanceReply>(claim));
    EXPECT_EQ(std::get<InstanceReply>(claim).exitCode, 3);
    EXPECT_EQ(std::get<InstanceReply>(claim).errors, QStringList(u"no.mox: gone"_qs));
    EXPECT_EQ(served, QList<QStringList>{aRequest.arguments});
}

TEST_F(SingleInstanceTest, aCrashedFirstsSocketIsTakenOver) {
    startFirst();
    server.reset();
    { // what a killed process leaves: a socket's file, and nobody behind it
        QLocalServer crashed;
        ASSERT_TRUE(crashed.listen(QFile::decodeName(place.socket)));
        ASSERT_EQ(::link(place.socket.constData(), (place.socket + ".kept").constData()), 0);
    }
    ASSERT_EQ(::rename((place.socket + ".kept").constData(), place.socket.constData()), 0);
    startFirst();
    auto second = launch();
    EXPECT_TRUE(std::holds_alternative<InstanceReply>(claimOf(second)));
}

TEST_F(SingleInstanceTest, ofManyAtOnceExactlyOneIsFirst) {
    std::vector<std::future<InstanceClaim>> launches;
    for (int i = 0; i < 16; ++i)
        launches.push_back(launch());
    // Until one listens the others wait for it.
    int firsts = 0;
    ASSERT_TRUE(waitUntil([&] {
        for (auto& each : launches) {
            if (!each.valid() || each.wait_for(0s) != std::future_status::ready)
                continue;
            InstanceClaim claim = each.get();
            if (auto* first = std::get_if<IsFirst>(&claim)) {
                ++firsts;
                server.emplace(place, std::move(first->lock));
                server->listen([this](const InstanceRequest& request) {
                    served += request.arguments;
                    return InstanceReply{};
                });
            }
        }
        return std::none_of(launches.begin(), launches.end(), [](const auto& each) { return each.valid(); });
    }));
    EXPECT_EQ(firsts, 1);
    EXPECT_EQ(served.size(), 15);
}

TEST_F(SingleInstanceTest, aFirstThatHangsIsLeftAloneAndDoesNotOpenTheFilesLater) {
    startFirst();
    const InstanceClaim claim = claimInstance(place, aRequest, shortly); // blocks the server's loop
    EXPECT_TRUE(std::holds_alternative<IsAlone>(claim));
    auto patient = launch(); // served in turn: the one before was looked at then
    EXPECT_TRUE(std::holds_alternative<InstanceReply>(claimOf(patient)));
    EXPECT_EQ(served.size(), 1);
}

TEST_F(SingleInstanceTest, whileTheFirstQuitsTheNextWaitsAndTakesItsPlace) {
    startFirst();
    server->close();
    EXPECT_TRUE(std::holds_alternative<IsAlone>(claimInstance(place, aRequest, shortly)))
        << "it still has things to write";
    auto next = launch();
    server.reset();
    EXPECT_TRUE(std::holds_alternative<IsFirst>(claimOf(next)));
}

TEST_F(SingleInstanceTest, aQuitInTheMiddleOfARequestIsNoReasonToCrash) {
    startFirst();
    meanwhile = [this] { server.reset(); };
    auto second = launch();
    const InstanceClaim claim = claimOf(second);
    ASSERT_TRUE(std::holds_alternative<InstanceReply>(claim)) << "it was accepted: nobody does it again";
    EXPECT_EQ(std::get<InstanceReply>(claim).exitCode, 1);
}

TEST_F(SingleInstanceTest, garbageEndsItsConnectionAndNothingElse) {
    startFirst();
    EXPECT_TRUE(isHungUpOn("GET / HTTP/1.1\r\n\r\n"));
    EXPECT_TRUE(isHungUpOn(requestFrame() + requestFrame()));
    EXPECT_TRUE(isHungUpOn(InstanceMessage::encodedAccepted()));
    EXPECT_TRUE(isHungUpOn(QByteArray("Vlqn\0\1\0\1\0\0\0\4\0\0\0\0", 16)));
    EXPECT_TRUE(served.isEmpty());
    auto second = launch();
    EXPECT_TRUE(std::holds_alternative<InstanceReply>(claimOf(second)));
}

TEST_F(SingleInstanceTest, aRequestThatDoesNotComeToItsEndIsNotWaitedForLong) {
    startFirst(50ms);
    EXPECT_TRUE(isHungUpOn({}));
    EXPECT_TRUE(isHungUpOn(requestFrame().chopped(1)));
    EXPECT_TRUE(served.isEmpty());
}

TEST_F(SingleInstanceTest, aRequestInPiecesIsServed) {
    startFirst();
    QLocalSocket slow;
    slow.connectToServer(QFile::decodeName(place.socket));
    for (const char byte : requestFrame()) {
        slow.write(&byte, 1);
        slow.flush();
        MainThread::runUntil([] { return true; });
    }
    EXPECT_TRUE(waitUntil([&] { return served.size() == 1; }));
}

TEST_F(SingleInstanceTest, anotherUserIsNeitherAskedNorHeard) {
    startFirst();
    place.user = ::geteuid() + 1; // who launches now
    auto asking = launch();
    EXPECT_TRUE(std::holds_alternative<IsAlone>(claimOf(asking)));
    EXPECT_TRUE(served.isEmpty()) << "the first, which would hear it, is not asked";

    server.reset();
    startFirst(); // which belongs to that other user
    EXPECT_TRUE(isHungUpOn(requestFrame()));
    place.user = ::geteuid();
    auto unheard = launch();
    EXPECT_TRUE(std::holds_alternative<IsAlone>(claimOf(unheard)));
    EXPECT_TRUE(served.isEmpty());
}

} // namespace
