#include "WindowActivation.h"

#include <QGuiApplication>
#include <QPointer>
#include <QRegularExpression>
#include <QTimer>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace WindowActivation {
namespace {

const QString tokenKey = QStringLiteral("activation-token");
const QString startupIdKey = QStringLiteral("desktop-startup-id");

xcb_atom_t atom(xcb_connection_t *connection, const char *name)
{
    const xcb_intern_atom_cookie_t cookie = xcb_intern_atom(connection, false, uint16_t(std::strlen(name)), name);
    std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

// A startup-notification message to the root window, in the 20-byte pieces of _NET_STARTUP_INFO_BEGIN and
// _NET_STARTUP_INFO, its terminating NUL included.
void sendStartupMessage(xcb_connection_t *connection, xcb_window_t root, const QByteArray &message)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = root;
    event.type = atom(connection, "_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t continuation = atom(connection, "_NET_STARTUP_INFO");
    const qsizetype length = message.size() + 1;
    for (qsizetype sent = 0; sent < length; sent += 20) {
        if (sent > 0) {
            event.type = continuation;
        }
        std::memset(event.data.data8, 0, sizeof event.data.data8);
        std::memcpy(event.data.data8, message.constData() + sent, size_t(std::min<qsizetype>(length - sent, 20)));
        xcb_send_event(connection, false, root, XCB_EVENT_MASK_PROPERTY_CHANGE, reinterpret_cast<const char *>(&event));
    }
}

// X11, as Qt does with the startup id it is started with: the id goes on the window (_NET_STARTUP_ID), where the
// window manager finds the launch and its time, and the launch is declared over ("remove"). The activation request
// carries the launch's time (the "_TIME" of the id), which is what a window manager's focus-stealing prevention
// compares with the user's last action; without one Qt's own request is made.
void bringToFrontOnX11(QWindow *window, const QString &startupId)
{
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection()) {
        window->requestActivate();
        return;
    }
    xcb_connection_t *connection = x11->connection();
    const xcb_window_t id = xcb_window_t(window->winId());
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const QByteArray value = startupId.toUtf8();
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atom(connection, "_NET_STARTUP_ID"),
                        atom(connection, "UTF8_STRING"), 8, uint32_t(value.size()), value.constData());
    QByteArray quoted = value;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    sendStartupMessage(connection, root, "remove: ID=\"" + quoted + '"');

    static const QRegularExpression timePart(QStringLiteral("_TIME(\\d+)$"));
    const QRegularExpressionMatch time = timePart.match(startupId);
    bool ok = false;
    const uint32_t timestamp = time.hasMatch() ? time.captured(1).toUInt(&ok) : 0;
    if (!ok || timestamp == 0) {
        xcb_flush(connection);
        window->requestActivate();
        return;
    }
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = id;
    event.type = atom(connection, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = 1; // from an application
    event.data.data32[1] = timestamp;
    xcb_send_event(connection, false, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(connection);
}

} // namespace

QString token(const QVariantMap &platformData)
{
    const QString activationToken = platformData.value(tokenKey).toString();
    return activationToken.isEmpty() ? platformData.value(startupIdKey).toString() : activationToken;
}

QVariantMap platformDataFromEnvironment()
{
    QVariantMap platformData;
    if (const QString value = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); !value.isEmpty()) {
        platformData.insert(tokenKey, value);
    }
    if (const QString value = qEnvironmentVariable("DESKTOP_STARTUP_ID"); !value.isEmpty()) {
        platformData.insert(startupIdKey, value);
    }
    return platformData;
}

QList<QPair<QString, QString>> environmentFor(const QString &token)
{
    if (token.isEmpty()) {
        return {};
    }
    return {{QStringLiteral("XDG_ACTIVATION_TOKEN"), token}, {QStringLiteral("DESKTOP_STARTUP_ID"), token}};
}

void bringToFront(QWindow *window, const QString &token)
{
    if (!window) {
        return;
    }
    window->show();
    window->raise();
    if (token.isEmpty()) {
        window->requestActivate();
        return;
    }
    if (QGuiApplication::platformName() == u"xcb") {
        bringToFrontOnX11(window, token);
        return;
    }
    // Wayland: Qt 6.4 activates with the token it finds in XDG_ACTIVATION_TOKEN (xdg_activation_v1.activate) when a
    // window asks for the focus, and removes it from the environment once used. Its own request, without one, is
    // made with the serial of the window's last input, which a compositor refuses for a window behind another.
    qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    window->requestActivate();
    qunsetenv("XDG_ACTIVATION_TOKEN"); // not for the programs started later
}

void whenFocused(QObject *context, int milliseconds, std::function<void(bool)> then)
{
    if (QGuiApplication::focusWindow()) {
        then(true);
        return;
    }
    // The timer is the connections' context: gone with `context`, and deleted once the answer is given.
    auto *timer = new QTimer(context);
    timer->setSingleShot(true);
    auto pending = std::make_shared<std::function<void(bool)>>(std::move(then));
    auto finish = [timer, pending](bool focused) {
        if (!*pending) {
            return;
        }
        const std::function<void(bool)> call = std::exchange(*pending, nullptr);
        timer->deleteLater();
        call(focused);
    };
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, timer, [finish](QWindow *window) {
        if (window) {
            finish(true);
        }
    });
    QObject::connect(timer, &QTimer::timeout, timer, [finish] { finish(false); });
    timer->start(milliseconds);
}

} // namespace WindowActivation
