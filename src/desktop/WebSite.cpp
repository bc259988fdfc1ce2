#include "desktop/WebSite.h"

#include "config/SettingsWrapper.h"
#include "desktop/UsersOnline.h"
#include "desktop/VersionFile.h"
#include "presentation/ChatWriter.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace {

const QString kVersionPath = QStringLiteral("/corvantide.version.txt");
const QString kUsersPath = QStringLiteral("/corvantide.users.php");

// The failed read's answer: the text of a reply that worked, else nothing.
QByteArray answerOf(QNetworkReply* reply) {
    return reply->error() == QNetworkReply::NoError ? reply->readAll() : QByteArray();
}

} // namespace

WebSite::WebSite(QObject* parent) : QObject(parent), m_network(new QNetworkAccessManager(this)) {
    DesktopShell& shell = DesktopShell::instance();
    connect(&shell, &DesktopShell::updateCheckRequested, this, &WebSite::CheckForUpdates);
    connect(&shell, &DesktopShell::usersOnlineRequested, this, &WebSite::RefreshUsersOnline);
}

WebSite::~WebSite() = default;

QUrl WebSite::Address(const QString& path) {
    const QString host = HostName();
    if (host.isEmpty()) return {};
    return QUrl(QStringLiteral("http://") + host + path);
}

QString WebSite::HostName() {
    return SettingsWrapper::instance().WebHost().trimmed();
}

QNetworkReply* WebSite::get(const QString& path) {
    const QUrl address = Address(path);
    if (!address.isValid()) return nullptr;
    QNetworkRequest request(address);
    request.setTransferTimeout(m_timeout);
    QNetworkReply* reply = m_network->get(request);
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    return reply;
}

void WebSite::CheckForUpdates() {
    QNetworkReply* reply = get(kVersionPath);
    if (!reply) return;
    connect(reply, &QNetworkReply::finished, this,
            [this, reply] { announceUpdate(answerOf(reply)); });
}

void WebSite::announceUpdate(const QByteArray& data) {
    const MachineFacts& machine = Machine();
    const QString own = QString::number(machine.VersionMajor) + u'.' +
                        QString::number(machine.VersionMinor) + u'.' +
                        QString::number(machine.VersionRevision);
    const VersionFile file = VersionFile::Read(data, own, machine.VersionRevision);
    if (file.updateFound) {
        const QString available =
            QStringLiteral("Corvantide v") + file.version + QStringLiteral(" is available!");
        const QString gotoSite = QStringLiteral("Please goto ") + HostName() +
                                 QStringLiteral(" to download the new version!");
        WriteChat(0, Status::Information, available);
        WriteChat(0, {{0xFFFFFF, gotoSite}});
        const int slot = SlotTable::instance().CurrentIndex();
        WriteChat(slot, {{0xFFFFFF, QString(105, u'-')}});
        WriteChat(slot, Status::Error, QStringLiteral("Your version of Corvantide is outdated!"));
        WriteChat(slot, Status::Information, available);
        WriteChat(slot, {{0xFFFFFF, gotoSite}});
        WriteChat(slot, {{0xFFFFFF, QStringLiteral("Changes made in this version:")}});
        for (const QString& change : file.changes)
            WriteChat(slot, {{0xFFFFFF, change}});
    }
    Q_EMIT updateCheckDone(file.updateFound);
}

void WebSite::RefreshUsersOnline() {
    // A read that hangs is not stacked upon: the next minute asks again.
    if (m_usersRead) return;
    QNetworkReply* reply = get(kUsersPath);
    if (!reply) return;
    m_usersRead = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        m_usersRead = nullptr;
        setUsersOnline(UsersOnlineLabel(answerOf(reply)));
    });
}

void WebSite::setUsersOnline(const QString& label) {
    if (label == m_usersOnline) return;
    m_usersOnline = label;
    Q_EMIT usersOnlineChanged(label);
}
