// Shows the window and closes it.
#include "Classes/WindowControllers/XWindowController.h"

#include <QAction>
#include <QApplication>

XWindowController::XWindowController(QObject* parent)
    : QObject(parent), m_window(new QWidget(nullptr, Qt::Dialog)) {
    m_window->setAttribute(Qt::WA_QuitOnClose, false);
    auto* close = new QAction(m_window);
    close->setShortcuts({Qt::Key_Escape, Qt::CTRL | Qt::Key_W});
    // A list that hangs from a pop-up goes first.
    connect(close, &QAction::triggered, m_window, [this] {
        QWidget* popup = QApplication::activePopupWidget();
        (popup != nullptr ? popup : m_window.data())->close();
    });
    m_window->addAction(close);
}

XWindowController::~XWindowController() {
    delete m_window.data();
}

void XWindowController::makeKeyAndOrderFront() {
    const QWidget* front = QApplication::activeWindow();
    if (!m_window->isVisible() && front != nullptr) {
        m_window->adjustSize();
        QRect place(QPoint(), m_window->size());
        place.moveCenter(front->geometry().center());
        m_window->move(place.topLeft());
    }
    m_window->showNormal();
    m_window->raise();
    m_window->activateWindow();
}
