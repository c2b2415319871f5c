// A main window around a plot page.
#include "Classes/WindowControllers/PlotWindow.h"

#include "MoxDocument.h"

#include <QAction>
#include <QCoreApplication>
#include <QLabel>
#include <QStatusBar>

namespace {

constexpr QSize firstSize{920, 550};

} // namespace

PlotWindow::PlotWindow(std::unique_ptr<MoxDocument> document, const QString& title)
    : m_document(std::move(document)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setCentralWidget(m_controller.view());
    m_controller.setDocument(m_document.get());

    const auto addShortcut = [this](QKeySequence::StandardKey key, auto perform) {
        auto* action = new QAction(this);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, perform);
        addAction(action);
    };
    addShortcut(QKeySequence::Close, [this] { close(); });
    addShortcut(QKeySequence::Quit, [] { QCoreApplication::quit(); });
    resize(firstSize);
    m_controller.onBecameVisible();
}

PlotWindow::~PlotWindow() {
    m_controller.setDocument(nullptr);
    // The page belongs to its controller, not to the window.
    takeCentralWidget();
    m_controller.view()->setParent(nullptr);
}

void PlotWindow::showMessage(const QString& message) {
    statusBar()->showMessage(message);
}
