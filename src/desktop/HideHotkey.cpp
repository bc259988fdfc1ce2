#include "desktop/HideHotkey.h"

#include "presentation/ChatWriter.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>

#ifdef CORVANTIDE_HAVE_XCB
#include <xcb/xcb.h>
#endif

#include <cstdlib>

namespace {

const QString kPortalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kShortcutId = QStringLiteral("hide-show");

// One shortcut as the portal takes it: its id and its properties.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

QDBusMessage portalCall(const QString& interface, const QString& method) {
    return QDBusMessage::createMethodCall(kPortalService, kPortalPath, interface, method);
}

#ifdef CORVANTIDE_HAVE_XCB
constexpr quint32 kKeysymM = 0x006d;
// Caps Lock and Num Lock must not stop the key: it is grabbed with each.
constexpr quint16 kLockMasks[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                  XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

xcb_connection_t* x11Connection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

quint8 keycodeOfM(xcb_connection_t* connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    xcb_get_keyboard_mapping_reply_t* reply = xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, quint8(count)),
        nullptr);
    if (!reply) return 0;
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(reply);
    const int perKey = reply->keysyms_per_keycode;
    quint8 keycode = 0;
    for (int key = 0; key < count && !keycode; ++key) {
        for (int column = 0; column < perKey; ++column) {
            if (keysyms[key * perKey + column] == kKeysymM)
                keycode = quint8(setup->min_keycode + key);
        }
    }
    std::free(reply);
    return keycode;
}
#endif

} // namespace

Q_DECLARE_METATYPE(PortalShortcut)

HideHotkey::HideHotkey(QObject* parent) : QObject(parent) {}

HideHotkey::~HideHotkey() {
    UnregisterHideHotkey();
}

QString HideHotkey::UnavailableLine(const QString& why) {
    return QStringLiteral("The hide/show hot key (Alt+M) is not available on this desktop (") +
           why + QStringLiteral("); use Window > Hide/show or the tray icon.");
}

void HideHotkey::unavailable(const QString& why) {
    if (m_reported) return;
    m_reported = true;
    WriteChat(0, Status::Warning, UnavailableLine(why));
}

void HideHotkey::RegisterHideHotkey() {
    if (Registered()) return;
    if (QGuiApplication::platformName() == u"xcb") {
        if (!grabX11()) unavailable(QStringLiteral("another program holds Alt+M"));
        return;
    }
    askPortal();
}

void HideHotkey::UnregisterHideHotkey() {
    ungrabX11();
    if (!m_portalSession.isEmpty()) {
        QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
            kPortalService, m_portalSession, QStringLiteral("org.freedesktop.portal.Session"),
            QStringLiteral("Close")));
        m_portalSession.clear();
    }
}

// X11 -----------------------------------------------------------------------

bool HideHotkey::grabX11() {
#ifdef CORVANTIDE_HAVE_XCB
    xcb_connection_t* connection = x11Connection();
    if (!connection) return false;
    const quint8 keycode = keycodeOfM(connection);
    if (!keycode) return false;
    const xcb_window_t root = rootWindow(connection);
    bool taken = false;
    for (quint16 locks : kLockMasks) {
        xcb_generic_error_t* error = xcb_request_check(
            connection, xcb_grab_key_checked(connection, 1, root, XCB_MOD_MASK_1 | locks, keycode,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        if (error) {
            taken = taken || locks == 0;
            std::free(error);
        }
    }
    if (taken) {
        xcb_ungrab_key(connection, keycode, root, XCB_MOD_MASK_ANY);
        xcb_flush(connection);
        return false;
    }
    m_keycode = keycode;
    QCoreApplication::instance()->installNativeEventFilter(this);
    return true;
#else
    return false;
#endif
}

void HideHotkey::ungrabX11() {
#ifdef CORVANTIDE_HAVE_XCB
    if (!m_keycode) return;
    QCoreApplication::instance()->removeNativeEventFilter(this);
    if (xcb_connection_t* connection = x11Connection()) {
        for (quint16 locks : kLockMasks)
            xcb_ungrab_key(connection, m_keycode, rootWindow(connection), XCB_MOD_MASK_1 | locks);
        xcb_flush(connection);
    }
    m_keycode = 0;
#endif
}

bool HideHotkey::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
#ifdef CORVANTIDE_HAVE_XCB
    if (!m_keycode || eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_KEY_PRESS) return false;
    const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event);
    constexpr quint16 kModifiers =
        XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
    if (key->detail != m_keycode || (key->state & kModifiers) != XCB_MOD_MASK_1) return false;
    Q_EMIT activated();
    return true;
#else
    Q_UNUSED(eventType)
    Q_UNUSED(message)
    return false;
#endif
}

// Desktop portal ----------------------------------------------------------------

// The portal answers each request with a Response signal on a path made of
// our bus name and a token; listening starts before the call, so that a quick
// answer is not missed.
void HideHotkey::listenForResponse(const QString& token) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!m_pendingRequest.isEmpty())
        bus.disconnect(kPortalService, m_pendingRequest,
                       QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
                       this, SLOT(onPortalResponse(uint, QVariantMap)));
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    m_pendingRequest = kPortalPath + QStringLiteral("/request/") + sender + u'/' + token;
    bus.connect(kPortalService, m_pendingRequest, QStringLiteral("org.freedesktop.portal.Request"),
                QStringLiteral("Response"), this, SLOT(onPortalResponse(uint, QVariantMap)));
}

void HideHotkey::askPortal() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        unavailable(QStringLiteral("no session bus"));
        return;
    }
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    listenForResponse(QStringLiteral("corvantide_session"));
    QDBusMessage call = portalCall(kShortcuts, QStringLiteral("CreateSession"));
    call << QVariantMap{{QStringLiteral("handle_token"), QStringLiteral("corvantide_session")},
                        {QStringLiteral("session_handle_token"), QStringLiteral("corvantide")}};
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        w->deleteLater();
        if (w->isError())
            unavailable(QStringLiteral("its desktop portal offers no global shortcuts"));
    });
}

void HideHotkey::bindPortalShortcut() {
    listenForResponse(QStringLiteral("corvantide_bind"));
    QDBusMessage call = portalCall(kShortcuts, QStringLiteral("BindShortcuts"));
    const QList<PortalShortcut> shortcuts{
        {kShortcutId,
         {{QStringLiteral("description"), QStringLiteral("Hide or show Corvantide")},
          {QStringLiteral("preferred_trigger"), QStringLiteral("ALT+m")}}}};
    call << QVariant::fromValue(QDBusObjectPath(m_portalSession)) << QVariant::fromValue(shortcuts)
         << QString()
         << QVariantMap{{QStringLiteral("handle_token"), QStringLiteral("corvantide_bind")}};
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        w->deleteLater();
        if (w->isError()) unavailable(w->error().message());
    });
    QDBusConnection::sessionBus().connect(
        kPortalService, kPortalPath, kShortcuts, QStringLiteral("Activated"), this,
        SLOT(onPortalActivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
}

void HideHotkey::onPortalResponse(uint response, const QVariantMap& results) {
    if (response != 0) {
        unavailable(QStringLiteral("the desktop refused the shortcut"));
        m_portalSession.clear();
        return;
    }
    if (m_portalSession.isEmpty() && results.contains(QStringLiteral("session_handle"))) {
        // A text in the portal's first versions, an object path in later ones.
        const QVariant handle = results.value(QStringLiteral("session_handle"));
        m_portalSession = handle.canConvert<QDBusObjectPath>()
                              ? handle.value<QDBusObjectPath>().path()
                              : handle.toString();
        bindPortalShortcut();
    }
}

void HideHotkey::onPortalActivated(const QDBusObjectPath& session, const QString& shortcut,
                                   qulonglong, const QVariantMap&) {
    if (session.path() == m_portalSession && shortcut == kShortcutId) Q_EMIT activated();
}
