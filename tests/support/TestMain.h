// What the main functions of test executables share: offscreen, user defaults in memory, no warning
// overlooked.
#pragma once

#include "Platform/Core/UserDefaults.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtGlobal>

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace support {

class FreshSurroundings : public testing::EmptyTestEventListener {
  public:
    explicit FreshSurroundings(std::function<void()> alsoBeforeEachTest)
        : m_alsoBeforeEachTest(std::move(alsoBeforeEachTest)) {}

    void OnTestStart(const testing::TestInfo&) override {
        UserDefaults::standard().useMemoryStore();
        if (m_alsoBeforeEachTest)
            m_alsoBeforeEachTest();
    }

  private:
    std::function<void()> m_alsoBeforeEachTest;
};

/// Runs all tests with an application object of that class; `setUp` is called once it is there.
template <class Application>
int runAllTests(int argc, char** argv, const std::function<void()>& setUp = {},
                std::function<void()> beforeEachTest = {}) {
    testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir state; // what was left of the user's own program is nobody's business
    qputenv("XDG_STATE_HOME", state.path().toLocal8Bit());
    const Application application(argc, argv);
    if (setUp)
        setUp();
    mainThreadLoop().emplace();
    installTestHandlers();
    testing::UnitTest::GetInstance()->listeners().Append(new FreshSurroundings(std::move(beforeEachTest)));
    const int failed = RUN_ALL_TESTS();
    mainThreadLoop().reset();
    return failed;
}

} // namespace support
