#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>

class QMenu;
class QSystemTrayIcon;

// The program's icon in the desktop's notification area, with its menu and
// tips. A desktop without a notification area gets the tips as desktop
// notifications (org.freedesktop.Notifications) instead.
class TrayIcon : public QObject {
    Q_OBJECT
public:
    TrayIcon(const QIcon& icon, QMenu* menu, QObject* parent = nullptr);

    // Whether this desktop has a notification area at all.
    static bool Available();

    void AddTrayIcon();
    void RemoveTrayIcon();
    bool TrayActive() const;
    // Lasts at most seven seconds.
    void ShowBalloon(const QString& title, const QString& text);

Q_SIGNALS:
    // A double click on the icon.
    void restoreRequested();

private:
    void notify(const QString& title, const QString& text);

    QIcon m_icon;
    QPointer<QMenu> m_menu;
    QSystemTrayIcon* m_tray = nullptr;
    bool m_notificationsFailed = false;
};
