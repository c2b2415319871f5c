// Speaks to the X server directly where the toolkit has no words; Wayland takes the token from the
// environment.
#include "Classes/SingleInstance/DesktopSession.h"

#include "Product.h"

#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestWord = 1'024;
constexpr uint8_t bitsOfText = 8;
constexpr uint8_t bitsOfNumbers = 32;

xcb_connection_t* connectionToX11() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_window_t rootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    const auto length = static_cast<uint16_t>(std::strlen(name));
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, length, name), nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// When the user asked for the launch: the digits after "_TIME".
std::optional<uint32_t> timeOf(const QString& startupId) {
    const qsizetype at = startupId.lastIndexOf("_TIME"_L1);
    bool isNumber = false;
    const uint time = at < 0 ? 0 : startupId.sliced(at + 5).toUInt(&isNumber);
    return isNumber && time != 0 ? std::optional<uint32_t>(time) : std::nullopt;
}

void sendToRoot(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t type, uint8_t format,
                const xcb_client_message_data_t& data, uint32_t mask) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = format;
    message.window = window;
    message.type = type;
    message.data = data;
    xcb_send_event(connection, 0, rootOf(connection), mask, reinterpret_cast<const char*>(&message));
}

void activate(xcb_connection_t* connection, const QWidget& window, uint32_t time) {
    constexpr uint32_t fromApplication = 1;
    xcb_client_message_data_t data{};
    data.data32[0] = fromApplication;
    data.data32[1] = time;
    sendToRoot(connection, static_cast<xcb_window_t>(window.winId()), atom(connection, "_NET_ACTIVE_WINDOW"),
               bitsOfNumbers, data,
               XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

/// "remove: ID=...", in pieces of 20 bytes, the last one with a zero.
void endStartup(xcb_connection_t* connection, QString startupId) {
    startupId.replace(u'\\', u"\\\\"_qs).replace(u'"', u"\\\""_qs);
    const QByteArray text = "remove: ID=\"" + startupId.toUtf8() + '"';
    const xcb_window_t sender = xcb_generate_id(connection);
    xcb_create_window(connection, 0, sender, rootOf(connection), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    constexpr qsizetype piece = sizeof(xcb_client_message_data_t::data8);
    const QByteArrayView withZero(text.constData(), text.size() + 1);
    const char* type = "_NET_STARTUP_INFO_BEGIN";
    for (qsizetype at = 0; at < withZero.size(); at += piece) {
        const QByteArrayView bytes = withZero.sliced(at, std::min(piece, withZero.size() - at));
        xcb_client_message_data_t data{};
        std::memcpy(data.data8, bytes.data(), static_cast<std::size_t>(bytes.size()));
        sendToRoot(connection, sender, atom(connection, type), bitsOfText, data,
                   XCB_EVENT_MASK_PROPERTY_CHANGE);
        type = "_NET_STARTUP_INFO";
    }
    xcb_destroy_window(connection, sender);
}

} // namespace

void DesktopSession::setWindowClass(const QWindow& window) {
    xcb_connection_t* connection = connectionToX11();
    if (connection == nullptr)
        return;
    // The instance's name, then the class's, each with its zero.
    const QByteArray value = QByteArray("velquin") + '\0' + Product::id + '\0';
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, bitsOfText, static_cast<uint32_t>(value.size()),
                        value.constData());
}

void DesktopSession::endLaunch(QWidget* window, const QString& activationToken, const QString& startupId) {
    if (!activationToken.isEmpty() && activationToken.size() <= longestWord)
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8()); // used up by the next activation
    if (window != nullptr)
        window->activateWindow();
    xcb_connection_t* connection = connectionToX11();
    if (connection == nullptr || startupId.isEmpty() || startupId.size() > longestWord)
        return;
    if (const auto time = timeOf(startupId); time && window != nullptr)
        activate(connection, *window, *time);
    endStartup(connection, startupId);
    xcb_flush(connection);
}
