// Tells the toolkit and, under X11, the window manager.
#include "Classes/WindowControllers/ToolStacking.h"

#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

void ToolStacking::keepInFrontOf(QWidget& tool, const QWidget* document) {
    tool.winId(); // there is a handle from here on
    QWindow* parent = document != nullptr ? document->windowHandle() : nullptr;
    tool.windowHandle()->setTransientParent(parent);
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
    if (connection == nullptr || parent == nullptr || !tool.isVisible())
        return;
    const auto owner = static_cast<xcb_window_t>(parent->winId());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(tool.winId()),
                        XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 32, 1, &owner);
    xcb_flush(connection);
    tool.raise();
}
