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

TEST(UserDefaults, aReadOnlyProcessLeavesNoFile) {
    const support::ScratchFolder folder;
    {
        UserDefaults defaults(folder.path(u"velquin.conf"_qs));
        defaults.setReadOnly(true);
        defaults.set(u"Max"_qs, 8);
        EXPECT_FALSE(defaults.contains(u"Max"_qs));
    }
    EXPECT_EQ(folder.fileNames(), QStringList());
}

} // namespace
