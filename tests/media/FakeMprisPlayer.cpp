#include "media/FakeMprisPlayer.h"

#include <QDBusMessage>

namespace {

const QString kPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString kRoot = QStringLiteral("org.mpris.MediaPlayer2");
const QString kPlayer = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

} // namespace

FakeMprisPlayer::FakeMprisPlayer(const QString& address, const QString& name, Answers answers)
    : m_bus(QDBusConnection::connectToBus(address, QStringLiteral("fake-") + name)), m_name(name),
      m_answers(answers) {
    m_bus.registerVirtualObject(kPath, this);
}

FakeMprisPlayer::~FakeMprisPlayer() {
    m_bus.unregisterObject(kPath);
    QDBusConnection::disconnectFromBus(m_bus.name());
}

bool FakeMprisPlayer::appear() {
    return m_bus.registerService(kRoot + u'.' + m_name);
}

void FakeMprisPlayer::leave() {
    m_bus.unregisterService(kRoot + u'.' + m_name);
}

void FakeMprisPlayer::play(const QString& artist, const QString& title) {
    m_status = QStringLiteral("Playing");
    m_metadata = {{QStringLiteral("xesam:artist"), QStringList{artist}},
                  {QStringLiteral("xesam:title"), title}};
    tell(playerProperties());
}

QVariantMap FakeMprisPlayer::playerProperties() const {
    return {{QStringLiteral("PlaybackStatus"), m_status}, {QStringLiteral("Metadata"), m_metadata}};
}

void FakeMprisPlayer::tell(const QVariantMap& changed) {
    QDBusMessage signal =
        QDBusMessage::createSignal(kPath, kProperties, QStringLiteral("PropertiesChanged"));
    signal << kPlayer << changed << QStringList();
    m_bus.send(signal);
}

QString FakeMprisPlayer::introspect(const QString&) const {
    return {};
}

bool FakeMprisPlayer::handleMessage(const QDBusMessage& message,
                                    const QDBusConnection& connection) {
    if (message.interface() != kProperties) commands << message.member();
    if (m_answers == Answers::Never) return true;
    if (message.member() == u"GetAll") {
        const QVariantMap properties =
            message.arguments().value(0).toString() == kRoot
                ? QVariantMap{{QStringLiteral("Identity"), QStringLiteral("Fake Player")}}
                : playerProperties();
        connection.send(message.createReply(properties));
        return true;
    }
    const QString& member = message.member();
    if (member == u"PlayPause" || member == u"Play" || member == u"Stop") {
        m_status = member == u"Stop"                                  ? QStringLiteral("Stopped")
                   : member == u"PlayPause" && m_status == u"Playing" ? QStringLiteral("Paused")
                                                                      : QStringLiteral("Playing");
        tell({{QStringLiteral("PlaybackStatus"), m_status}});
    }
    connection.send(message.createReply());
    return true;
}
