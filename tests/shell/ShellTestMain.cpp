// The main function of the shell's tests: with an application that has widgets.
#include "support/TestMain.h"

#include <QApplication>

int main(int argc, char** argv) {
    return support::runAllTests<QApplication>(argc, argv,
                                              [] { QApplication::setQuitOnLastWindowClosed(false); });
}
