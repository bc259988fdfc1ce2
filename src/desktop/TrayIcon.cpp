#include "desktop/TrayIcon.h"

#include "presentation/ChatWriter.h"
#include "session/MachineFacts.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMenu>
#include <QSystemTrayIcon>

namespace {

constexpr int kBalloonTime = 7000;

} // namespace

TrayIcon::TrayIcon(const QIcon& icon, QMenu* menu, QObject* parent)
    : QObject(parent), m_icon(icon), m_menu(menu) {}

bool TrayIcon::Available() {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

bool TrayIcon::TrayActive() const {
    return m_tray && m_tray->isVisible();
}

void TrayIcon::AddTrayIcon() {
    if (m_tray || !Available()) return;
    m_tray = new QSystemTrayIcon(m_icon, this);
    m_tray->setToolTip((QStringLiteral("Corvantide v") + Machine().versionText()).left(128));
    if (m_menu) m_tray->setContextMenu(m_menu);
    connect(m_tray, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::DoubleClick || reason == QSystemTrayIcon::Trigger)
                    Q_EMIT restoreRequested();
            });
    m_tray->show();
}

void TrayIcon::RemoveTrayIcon() {
    if (!m_tray) return;
    m_tray->hide();
    m_tray->deleteLater();
    m_tray = nullptr;
}

void TrayIcon::ShowBalloon(const QString& title, const QString& text) {
    if (TrayActive() && QSystemTrayIcon::supportsMessages())
        m_tray->showMessage(title, text, QSystemTrayIcon::Information, kBalloonTime);
    else
        notify(title, text);
}

void TrayIcon::notify(const QString& title, const QString& text) {
    if (m_notificationsFailed) return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    call << QStringLiteral("Corvantide") << 0u << QStringLiteral("corvantide") << title << text
         << QStringList() << QVariantMap() << kBalloonTime;
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        w->deleteLater();
        if (!w->isError() || m_notificationsFailed) return;
        // Said once: the tips would fail the same way each time.
        m_notificationsFailed = true;
        WriteChat(0, Status::Warning,
                  QStringLiteral("Tray tips cannot be shown: this desktop has no notification "
                                 "area and its notifications did not answer (") +
                      w->error().message() + QStringLiteral(")."));
    });
}
