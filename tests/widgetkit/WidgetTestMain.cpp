// The main function of widget tests: with an application that has widgets and our style.
#include "Platform/Widgets/Appearance.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QFont>

int main(int argc, char** argv) {
    const auto setUp = [] {
        QApplication::setQuitOnLastWindowClosed(false);
        Appearance::instance().install(false);
        QFont font(QStringLiteral("Liberation Sans"));
        font.setPixelSize(13);
        QApplication::setFont(font);
    };
    const auto beforeEachTest = [] {
        Appearance::instance().setTheme(Theme::Light);
        Appearance::instance().setAnimations(false);
    };
    return support::runAllTests<QApplication>(argc, argv, setUp, beforeEachTest);
}
