#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <vector>

class QDBusMessage;
class QDBusPendingCall;

// One media player on the session bus, as its change signals last told it.
struct MprisPlayer {
    QString busName;        // org.mpris.MediaPlayer2.vlc.instance4242
    QString owner;          // the connection that holds the name, ":1.42"
    QString identity;       // the player's own name for itself, "VLC media player"
    QString playbackStatus; // "Playing", "Paused", "Stopped"; empty until it answered
    QVariantMap metadata;
    quint64 lastChange = 0; // order of the last news from it; higher is newer

    // The player's name on the bus: "vlc.instance4242".
    QString name() const;
    // "vlc" for "vlc" and for any instance of it, without regard to case.
    bool isNamed(const QString& player) const;
    // Artist and title, the way the bot announces a song.
    QString song() const;
};

// Every MPRIS 2 player on one bus, kept up to date from the bus's own signals
// (NameOwnerChanged, PropertiesChanged). Nothing here waits for a player: the
// first look and every command are asynchronous, so a player that hangs only
// leaves its state unknown.
class MprisPlayers : public QObject {
    Q_OBJECT
public:
    explicit MprisPlayers(const QDBusConnection& bus, QObject* parent = nullptr);

    bool isConnected() const { return m_bus.isConnected(); }
    const std::vector<MprisPlayer>& players() const { return m_players; }

    // Sends a method of the player's interface ("Next", "PlayPause") or of
    // the root interface ("Quit") without waiting. A refusal or silence is
    // told by `callFailed`.
    void call(const QString& busName, const QString& member);

    static const QString kPrefix;

Q_SIGNALS:
    // A player came, went, or changed its song or state.
    void changed();
    void callFailed(const QString& busName, const QString& member, const QString& error);

private Q_SLOTS:
    void nameOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void propertiesChanged(const QString& interface, const QVariantMap& properties,
                           const QStringList& invalidated, const QDBusMessage& message);

private:
    void listNames();
    void appear(const QString& busName, const QString& owner);
    void fetchProperties(const QString& busName);
    void apply(MprisPlayer& player, const QVariantMap& properties);
    MprisPlayer* find(const QString& busName);
    template <typename Done> void whenAnswered(const QDBusPendingCall& call, Done done);

    QDBusConnection m_bus;
    std::vector<MprisPlayer> m_players;
    quint64 m_changes = 0;
};
