// Failed assertions: their texts, their places, and what each policy does.
#include "Core/Assertions.h"

#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

namespace {

class AssertionsTest : public testing::Test {
  protected:
    AssertionsTest()
        : m_previous(setAssertionReporter(
              [this](const AssertionFailure& failure) { reported.push_back(failure); })) {}
    ~AssertionsTest() override { setAssertionReporter(std::move(m_previous)); }

    std::vector<AssertionFailure> reported;

  private:
    AssertionReporter m_previous;
};

TEST_F(AssertionsTest, reportTheFilledTextAndThePlaceThatMadeThem) {
    const AssertionScope scope(AssertionPolicy::ReportOnly);
    EXPECT_TRUE(xAssert(true, "never %d", 1));
    const int line = __LINE__ + 1;
    EXPECT_FALSE(xAssert(false, "Bad index %ld of \"%@\"", -3, "Row number"));
    ASSERT_EQ(reported.size(), 1U);
    EXPECT_STREQ(reported[0].what(), "Bad index -3 of \"Row number\"");
    EXPECT_TRUE(reported[0].sourcePath.ends_with("tests/core/AssertionsTest")) << reported[0].sourcePath;
    EXPECT_EQ(reported[0].line, line);
}

TEST_F(AssertionsTest, everyDirectiveIsFilledInOrder) {
    EXPECT_EQ(assertions::fillIn("%@ %s %d %ld %llu|", {"a", "b", "1", "2", "3"}), "a b 1 2 3|");
    EXPECT_EQ(assertions::fillIn("100%% of %@", {"it %d"}), "100% of it %d"); // an argument is no format
    EXPECT_EQ(assertions::fillIn("%@ and %@", {"one"}), "one and ");
    EXPECT_EQ(assertions::fillIn("ends with %", {}), "ends with ");
}

TEST_F(AssertionsTest, aThreadThrowsUnlessAScopeSaysOtherwise) {
    const auto throws = [] {
        try {
            return xAssert(false, "no");
        } catch (const AssertionFailure&) {
            return true;
        }
    };
    EXPECT_TRUE(throws());
    {
        const AssertionScope outer(AssertionPolicy::ReportOnly);
        EXPECT_FALSE(throws());
        {
            const AssertionScope inner(AssertionPolicy::Throw);
            EXPECT_TRUE(throws());
        }
        EXPECT_FALSE(throws());
        std::thread([&] { EXPECT_TRUE(throws()); }).join();
    }
    EXPECT_TRUE(throws());
    EXPECT_EQ(reported.size(), 6U); // thrown ones are reported, too
}

} // namespace
