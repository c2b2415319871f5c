// Observation by key: who is told what, in which order, and for how long.
#include "Platform/Core/Observable.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <array>

class Lamp : public Observable {
    Q_OBJECT
    OBSERVED(int, watts, setWatts, 40)
    OBSERVED(std::optional<double>, limit, setLimit, std::nullopt)
    OBSERVED(QString, title, setTitle, QStringLiteral("desk"))
};

namespace {

constexpr std::array wattsOnly{"watts"};
constexpr std::array allKeys{"watts", "limit", "title"};

TEST(Observable, observersHearTheirKeysInTheOrderOfRegistrationEqualValuesIncluded) {
    Lamp lamp;
    QStringList heard;
    const auto listen = [&](const char* who) {
        return [&heard, who](const KeyChange& change) {
            heard += QStringLiteral("%1 %2 %3>%4")
                         .arg(QLatin1String(who), QLatin1String(change.key), change.oldValue.toString(),
                              change.newValue.toString());
        };
    };
    const Observation all(lamp, allKeys, listen("all"));
    const Observation watts(lamp, wattsOnly, listen("watts"));
    lamp.setWatts(60);
    lamp.setTitle(QStringLiteral("wall"));
    lamp.setValueForKey("watts", 60); // an equal value is announced, too
    EXPECT_EQ(heard.join(u'|'), QStringLiteral("all watts 40>60|watts watts 40>60|all title desk>wall|"
                                               "all watts 60>60|watts watts 60>60"));
}

TEST(Observable, anOldValueThatWasAbsentIsPutBackAsAbsent) {
    Lamp lamp;
    QVariant oldValue;
    const Observation observation(lamp, allKeys,
                                  [&](const KeyChange& change) { oldValue = change.oldValue; });
    lamp.setLimit(2.5);
    lamp.setValueForKey("limit", oldValue);
    EXPECT_EQ(lamp.limit(), std::nullopt);
    lamp.setValueForKey("limit", oldValue); // the change before was from 2.5
    EXPECT_EQ(lamp.limit(), 2.5);
    EXPECT_EQ(lamp.valueForKey("limit").value<std::optional<double>>(), 2.5);
}

TEST(Observable, anEndedObservationIsSilentEvenWithinTheAnnouncementThatEndsIt) {
    auto lamp = std::make_unique<Lamp>();
    int second = 0;
    int self = 0;
    Observation ended;
    Observation endsItself;
    const Observation ends(*lamp, wattsOnly, [&](const KeyChange&) { ended.end(); });
    ended = Observation(*lamp, wattsOnly, [&](const KeyChange&) { ++second; });
    endsItself = Observation(*lamp, wattsOnly, [&](const KeyChange&) {
        ++self;
        endsItself.end();
        ++self; // what the handler holds is still alive
    });
    Observation moved = std::move(endsItself);
    endsItself = std::move(moved);
    lamp->setWatts(1);
    lamp->setWatts(2);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(self, 2);
    const Observation outlives(*lamp, wattsOnly, [](const KeyChange&) {});
    lamp.reset(); // the handles that still stand end without harm
}

TEST(Observable, aWrongKeyOrTypeIsAProgrammingError) {
    Lamp lamp;
    const support::AssertionRecorder recorder;
    lamp.setValueForKey("colour", 1);
    EXPECT_FALSE(lamp.valueForKey("colour").isValid());
    EXPECT_TRUE(lamp.dynamicPropertyNames().isEmpty());
    EXPECT_EQ(recorder.texts(),
              (std::vector<std::string>{"Lamp has no key \"colour\"", "Lamp has no key \"colour\""}));
}

} // namespace

#include "ObservableTest.moc"
