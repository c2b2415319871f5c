// The main function of widget tests: as the common one, with an application that has widgets and our style.
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Appearance.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QFont>

#include <gtest/gtest.h>

namespace {

class FreshSurroundings : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        UserDefaults::standard().useMemoryStore();
        Appearance::instance().setTheme(Theme::Light);
        Appearance::instance().setAnimations(false);
    }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Appearance::instance().install(false);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(13);
    QApplication::setFont(font);
    support::mainThreadLoop().emplace();
    support::installTestHandlers();
    testing::UnitTest::GetInstance()->listeners().Append(new FreshSurroundings);
    const int failed = RUN_ALL_TESTS();
    support::mainThreadLoop().reset();
    return failed;
}
