#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// The program's web site: at start its version file, each minute its count
// of running copies. The host is the setting WebHost; empty, nothing is read.
// Every read is asynchronous, so neither the start nor the window waits on
// the site; a read that fails or times out counts as an empty answer.
// A newer build is announced with the site's address; nothing is downloaded.
class WebSite : public QObject {
    Q_OBJECT
public:
    explicit WebSite(QObject* parent = nullptr);
    ~WebSite() override;

    // The address of a path on the site; empty when no site is set.
    static QUrl Address(const QString& path);
    // The site as the user types it into a browser ("http://host/").
    static QString HostName();

    void CheckForUpdates();
    void RefreshUsersOnline();
    const QString& UsersOnline() const { return m_usersOnline; }

    // How long a read may take before it counts as failed.
    void setTimeout(int milliseconds) { m_timeout = milliseconds; }

Q_SIGNALS:
    void usersOnlineChanged(const QString& label);
    // The version file was read and judged (for tests and the splash).
    void updateCheckDone(bool updateFound);

private:
    QNetworkReply* get(const QString& path);
    void announceUpdate(const QByteArray& data);
    void setUsersOnline(const QString& label);

    QNetworkAccessManager* m_network;
    QPointer<QNetworkReply> m_usersRead;
    int m_timeout = 20000;
    QString m_usersOnline;
};
