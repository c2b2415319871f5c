// Notifications: who is told, and what happens when handlers change the registrations.
#include "Platform/Core/NotificationCenter.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <new>
#include <string>
#include <thread>

namespace {

using Registration = NotificationCenter::Registration;

TEST(NotificationCenter, tellsThoseOfTheNameAndTheObjectInTheOrderOfRegistration) {
    NotificationCenter& center = NotificationCenter::defaultCenter();
    QObject red;
    QObject blue;
    std::string heard;
    const auto hear = [&](char who) { return [&heard, who](QObject*) { heard += who; }; };
    const Registration any = center.observe("lit", nullptr, hear('a'));
    const Registration ofRed = center.observe("lit", &red, hear('r'));
    const Registration other = center.observe("dark", &red, hear('d'));
    const std::string sameName = "lit"; // names are compared by their characters
    center.post(sameName.c_str(), &red);
    center.post("lit", &blue);
    center.post("lit", nullptr);
    center.post("dark", &red);
    center.post("unheard", &red);
    EXPECT_EQ(heard, "araad");
}

TEST(NotificationCenter, aHandlerMayEndAndAddRegistrations) {
    NotificationCenter& center = NotificationCenter::defaultCenter();
    std::string heard;
    Registration self;
    Registration later;
    Registration added;
    self = center.observe("lit", nullptr, [&](QObject*) {
        self.end();
        later = Registration(); // was about to be called
        added = center.observe("lit", nullptr, [&](QObject*) { heard += 'n'; });
        heard += 's';
    });
    later = center.observe("lit", nullptr, [&](QObject*) { heard += 'l'; });
    center.post("lit", nullptr);
    EXPECT_EQ(heard, "s"); // the added one hears from the next post on
    center.post("lit", nullptr);
    EXPECT_EQ(heard, "sn");
    const Registration moved = std::move(added);
    center.post("lit", nullptr);
    EXPECT_EQ(heard, "snn");
}

TEST(NotificationCenter, anObserverOfADeadObjectDoesNotHearItsSuccessorAtTheSameAddress) {
    alignas(QObject) std::array<std::byte, sizeof(QObject)> room{};
    int heard = 0;
    auto* first = new (room.data()) QObject;
    const Registration registration =
        NotificationCenter::defaultCenter().observe("lit", first, [&](QObject*) { ++heard; });
    first->~QObject();
    auto* second = new (room.data()) QObject;
    NotificationCenter::defaultCenter().post("lit", second);
    second->~QObject();
    EXPECT_EQ(heard, 0);
}

TEST(NotificationCenter, postingOffTheMainThreadIsAProgrammingError) {
    const support::AssertionRecorder recorder;
    int heard = 0;
    const Registration any =
        NotificationCenter::defaultCenter().observe("lit", nullptr, [&](QObject*) { ++heard; });
    std::thread([] {
        EXPECT_THROW(NotificationCenter::defaultCenter().post("lit", nullptr), AssertionFailure);
    }).join();
    EXPECT_EQ(heard, 0);
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{"lit was posted off the main thread"});
}

} // namespace
