#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QString>
#include <QVariantMap>

class QDBusObjectPath;

// Alt+M, which hides and shows the main window from anywhere on the desktop,
// also while the window is hidden. On X11 it is a key grab on the root
// window; elsewhere the desktop portal's global shortcuts, where the session
// offers them. Where neither works, one console line says so.
class HideHotkey : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
public:
    explicit HideHotkey(QObject* parent = nullptr);
    ~HideHotkey() override;

    void RegisterHideHotkey();
    void UnregisterHideHotkey();
    bool Registered() const { return m_keycode != 0 || !m_portalSession.isEmpty(); }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    // The line for a desktop that has no way to a global hot key.
    static QString UnavailableLine(const QString& why);

Q_SIGNALS:
    void activated();

private Q_SLOTS:
    void onPortalResponse(uint response, const QVariantMap& results);
    void onPortalActivated(const QDBusObjectPath& session, const QString& shortcut,
                           qulonglong timestamp, const QVariantMap& options);

private:
    bool grabX11();
    void ungrabX11();
    void askPortal();
    void bindPortalShortcut();
    void listenForResponse(const QString& token);
    void unavailable(const QString& why);

    quint8 m_keycode = 0;
    QString m_portalSession;
    QString m_pendingRequest;
    bool m_reported = false;
};
