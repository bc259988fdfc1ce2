#include "media/MprisPlayers.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QUrl>
#include <algorithm>

namespace {

const QString kPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString kRoot = QStringLiteral("org.mpris.MediaPlayer2");
const QString kPlayer = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kBusService = QStringLiteral("org.freedesktop.DBus");
const QString kBusPath = QStringLiteral("/org/freedesktop/DBus");
// A player that has not answered by then is taken as one that will not.
constexpr int kAnswerTimeoutMs = 5000;

// A dictionary inside a variant reaches us still marshalled.
QVariantMap asMap(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QDBusArgument>())
        return qdbus_cast<QVariantMap>(value.value<QDBusArgument>());
    return value.toMap();
}

} // namespace

const QString MprisPlayers::kPrefix = QStringLiteral("org.mpris.MediaPlayer2.");

QString MprisPlayer::name() const {
    return busName.mid(MprisPlayers::kPrefix.size());
}

bool MprisPlayer::isNamed(const QString& player) const {
    const QString own = name();
    return own.compare(player, Qt::CaseInsensitive) == 0 ||
           (own.size() > player.size() && own.at(player.size()) == u'.' &&
            own.startsWith(player, Qt::CaseInsensitive));
}

QString MprisPlayer::song() const {
    QString title = metadata.value(QStringLiteral("xesam:title")).toString();
    if (title.isEmpty())
        title = QUrl(metadata.value(QStringLiteral("xesam:url")).toString()).fileName();
    const QString artists =
        metadata.value(QStringLiteral("xesam:artist")).toStringList().join(QStringLiteral(", "));
    if (artists.isEmpty()) return title;
    if (title.isEmpty()) return artists;
    return artists + QStringLiteral(" - ") + title;
}

MprisPlayers::MprisPlayers(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_bus(bus) {
    if (!m_bus.isConnected()) return;
    m_bus.connect(kBusService, kBusPath, kBusService, QStringLiteral("NameOwnerChanged"), this,
                  SLOT(nameOwnerChanged(QString, QString, QString)));
    m_bus.connect(QString(), kPath, kProperties, QStringLiteral("PropertiesChanged"), this,
                  SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));
    listNames();
}

template <typename Done> void MprisPlayers::whenAnswered(const QDBusPendingCall& call, Done done) {
    auto* watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [done = std::move(done)](QDBusPendingCallWatcher* w) {
                done(*w);
                w->deleteLater();
            });
}

void MprisPlayers::listNames() {
    const QDBusMessage list = QDBusMessage::createMethodCall(kBusService, kBusPath, kBusService,
                                                             QStringLiteral("ListNames"));
    whenAnswered(m_bus.asyncCall(list, kAnswerTimeoutMs), [this](QDBusPendingCallWatcher& w) {
        const QDBusPendingReply<QStringList> names = w;
        if (names.isError()) return;
        for (const QString& name : names.value()) {
            if (!name.startsWith(kPrefix)) continue;
            QDBusMessage owner = QDBusMessage::createMethodCall(kBusService, kBusPath, kBusService,
                                                                QStringLiteral("GetNameOwner"));
            owner << name;
            whenAnswered(m_bus.asyncCall(owner, kAnswerTimeoutMs),
                         [this, name](QDBusPendingCallWatcher& answer) {
                             const QDBusPendingReply<QString> reply = answer;
                             if (!reply.isError()) appear(name, reply.value());
                         });
        }
    });
}

MprisPlayer* MprisPlayers::find(const QString& busName) {
    const auto it = std::find_if(m_players.begin(), m_players.end(),
                                 [&](const MprisPlayer& p) { return p.busName == busName; });
    return it == m_players.end() ? nullptr : &*it;
}

void MprisPlayers::appear(const QString& busName, const QString& owner) {
    MprisPlayer* player = find(busName);
    if (player && player->owner == owner) return;
    if (!player) {
        m_players.push_back({busName, owner, {}, {}, {}, 0});
        player = &m_players.back();
    } else {
        *player = {busName, owner, {}, {}, {}, 0};
    }
    player->lastChange = ++m_changes;
    fetchProperties(busName);
    Q_EMIT changed();
}

void MprisPlayers::fetchProperties(const QString& busName) {
    for (const QString& interface : {kRoot, kPlayer}) {
        QDBusMessage get =
            QDBusMessage::createMethodCall(busName, kPath, kProperties, QStringLiteral("GetAll"));
        get << interface;
        whenAnswered(m_bus.asyncCall(get, kAnswerTimeoutMs),
                     [this, busName](QDBusPendingCallWatcher& w) {
                         const QDBusPendingReply<QVariantMap> reply = w;
                         MprisPlayer* player = find(busName);
                         if (reply.isError() || !player) return;
                         apply(*player, reply.value());
                     });
    }
}

void MprisPlayers::apply(MprisPlayer& player, const QVariantMap& properties) {
    bool news = false;
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        if (it.key() == u"PlaybackStatus") {
            player.playbackStatus = it.value().toString();
        } else if (it.key() == u"Metadata") {
            player.metadata = asMap(it.value());
        } else if (it.key() == u"Identity") {
            player.identity = it.value().toString();
        } else {
            continue;
        }
        news = true;
    }
    if (!news) return;
    player.lastChange = ++m_changes;
    Q_EMIT changed();
}

void MprisPlayers::nameOwnerChanged(const QString& name, const QString&, const QString& newOwner) {
    if (!name.startsWith(kPrefix)) return;
    if (!newOwner.isEmpty()) {
        appear(name, newOwner);
        return;
    }
    const auto gone = std::remove_if(m_players.begin(), m_players.end(),
                                     [&](const MprisPlayer& p) { return p.busName == name; });
    if (gone == m_players.end()) return;
    m_players.erase(gone, m_players.end());
    Q_EMIT changed();
}

void MprisPlayers::propertiesChanged(const QString& interface, const QVariantMap& properties,
                                     const QStringList& invalidated, const QDBusMessage& message) {
    if (interface != kPlayer && interface != kRoot) return;
    // The signal names the sender's connection, which may hold several
    // player names.
    std::vector<QString> senders;
    for (const MprisPlayer& p : m_players) {
        if (p.owner == message.service()) senders.push_back(p.busName);
    }
    for (const QString& busName : senders) {
        if (MprisPlayer* player = find(busName)) apply(*player, properties);
        if (!invalidated.isEmpty()) fetchProperties(busName);
    }
}

void MprisPlayers::call(const QString& busName, const QString& member) {
    const bool root = member == u"Quit" || member == u"Raise";
    const QDBusMessage message =
        QDBusMessage::createMethodCall(busName, kPath, root ? kRoot : kPlayer, member);
    whenAnswered(m_bus.asyncCall(message, kAnswerTimeoutMs),
                 [this, busName, member](QDBusPendingCallWatcher& w) {
                     if (w.isError())
                         Q_EMIT callFailed(busName, member,
                                           w.error().type() == QDBusError::NoReply
                                               ? QStringLiteral("it did not answer")
                                               : w.error().message());
                 });
}
