#pragma once

#include "platform/MediaControl.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>

class MprisPlayers;
struct MprisPlayer;

// The user's media player, chosen by the setting MediaPlayer and driven over
// the session bus (MPRIS 2). The four names the setting has always known pick
// a player of this desktop, and any player running when that one is not; any
// other value is the bus name of one player ("vlc", "spotify"). Everything
// is answered from what the players last told, so no question waits.
class SongWrapper : public QObject, public MediaControl {
    Q_OBJECT
public:
    static SongWrapper& instance();
    // Makes this the player the rest of the program asks, and starts
    // watching the bus.
    static void install();

    // Watch the players of this bus instead of the session bus; what was
    // watched before is let go.
    void useBus(const QDBusConnection& bus);

    QString PlayerName() override;
    QString DisplayName(const QString& player) override;
    bool IsPlayerName(const QString& name) override;
    bool Opened() override;
    bool Launch() override;
    void Terminate() override;
    QString CurrentSong() override;
    void NextSong() override;
    void BackSong() override;
    void PlaySong() override;
    void PauseSong() override;
    void StopSong() override;

    // The music panel's line: "Winamp >> song", or "Winamp is not running".
    QString MusicLabel();
    bool Playing();

    // The bus name of the desktop player that a known MediaPlayer value
    // stands for; empty for any other value.
    static QString DesktopPlayerFor(const QString& mediaPlayer);

Q_SIGNALS:
    // The label, the song or the open state may read differently now.
    void changed();

private:
    SongWrapper();
    ~SongWrapper() override;
    // Connects to the bus and follows its players, once.
    void watch();
    // The players, or null without a bus; the first time that is so the
    // console says it.
    MprisPlayers* players();
    // The player of the chosen name; with `orAnyPlayer`, for the four known
    // names, the best running player when that one is not running.
    const MprisPlayer* selected(bool orAnyPlayer = true);
    // The command to the chosen player, then the plug-ins' event of the
    // same name.
    void send(const QString& member, const QString& pluginEvent);
    QString launchCommand(const QString& mediaPlayer) const;
    void songMayHaveChanged();

    std::optional<QDBusConnection> m_bus;
    std::unique_ptr<MprisPlayers> m_players;
    bool m_watching = false;
    bool m_toldNoBus = false;
};
