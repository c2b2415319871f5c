// The main function of every test executable: offscreen, with user defaults in memory, and no warning
// overlooked.
#include "Platform/Core/UserDefaults.h"
#include "support/TestSupport.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace {

class FreshUserDefaults : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { UserDefaults::standard().useMemoryStore(); }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    support::mainThreadLoop().emplace();
    support::installTestHandlers();
    testing::UnitTest::GetInstance()->listeners().Append(new FreshUserDefaults);
    const int failed = RUN_ALL_TESTS();
    support::mainThreadLoop().reset();
    return failed;
}
