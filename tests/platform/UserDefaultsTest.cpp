// The user defaults on a file, in memory and read-only.
#include "Platform/Core/UserDefaults.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

TEST(UserDefaults, valuesOutliveTheProcessInTheFile) {
    const support::ScratchFolder folder;
    const QString file = folder.path(u"sub/velquin.conf"_qs);
    const QStringList recent{u"/tmp/a, b;c=\"d\".csv"_qs, u"/tmp/\u00e9 \U0001F600.csv"_qs, u"one"_qs};
    {
        UserDefaults defaults(file);
        defaults.set(u"Recent"_qs, recent);
        defaults.set(u"One"_qs, QStringList{u"alone, it was"_qs});
        defaults.set(u"Max"_qs, 7);
        defaults.set(u"Dir"_qs, u"/home/x"_qs);
        defaults.set(u"Gone"_qs, 1);
        defaults.remove(u"Gone"_qs);
    }
    UserDefaults defaults(file);
    EXPECT_EQ(defaults.stringList(u"Recent"_qs), recent);
    EXPECT_EQ(defaults.stringList(u"One"_qs), QStringList{u"alone, it was"_qs});
    EXPECT_EQ(defaults.integer(u"Max"_qs), 7);
    EXPECT_EQ(defaults.integer(u"Dir"_qs), 0); // not a number
    EXPECT_EQ(defaults.integer(u"Gone"_qs), 0);
    EXPECT_FALSE(defaults.contains(u"Gone"_qs));
    EXPECT_FALSE(defaults.value(u"Gone"_qs).isValid());

    defaults.setReadOnly(true);
    defaults.set(u"Max"_qs, 8);
    defaults.remove(u"Dir"_qs);
    EXPECT_EQ(defaults.integer(u"Max"_qs), 7);
    EXPECT_EQ(UserDefaults(file).string(u"Dir"_qs), u"/home/x"_qs);

    defaults.useMemoryStore(); // empty, and writable again
    EXPECT_FALSE(defaults.contains(u"Max"_qs));
    defaults.set(u"Max"_qs, 9);
    EXPECT_EQ(defaults.integer(u"Max"_qs), 9);
    EXPECT_EQ(UserDefaults(file).integer(u"Max"_qs), 7);
}

TEST(UserDefaults, observersSeeWhatIsStored) {
    const support::ScratchFolder folder;
    UserDefaults defaults(folder.path(u"velquin.conf"_qs));
    QStringList seen;
    QObject::connect(&defaults, &UserDefaults::changed, &defaults,
                     [&](const QString& key) { seen += key + u"="_qs + defaults.string(key); });
    defaults.set(u"Type"_qs, 2);
    defaults.set(u"Type"_qs, 2); // an equal value is news, too
    defaults.remove(u"Type"_qs);
    defaults.useMemoryStore();
    defaults.set(u"Dir"_qs, u"/x"_qs);
    EXPECT_EQ(seen, (QStringList{u"Type=2"_qs, u"Type=2"_qs, u"Type="_qs, u"Dir=/x"_qs}));
}

TEST(UserDefaults, aReadOnlyProcessLeavesNoFile) {
    const support::ScratchFolder folder;
    {
        UserDefaults defaults(folder.path(u"velquin.conf"_qs));
        defaults.setReadOnly(true);
        QObject::connect(&defaults, &UserDefaults::changed, [] { ADD_FAILURE() << "nothing was stored"; });
        defaults.set(u"Max"_qs, 8);
        EXPECT_FALSE(defaults.contains(u"Max"_qs));
    }
    EXPECT_EQ(folder.fileNames(), QStringList());
}

} // namespace
