// The main function of every test executable that has no widgets.
#include "support/TestMain.h"

#include <QGuiApplication>

int main(int argc, char** argv) {
    return support::runAllTests<QGuiApplication>(argc, argv);
}
