#include "media/SongWrapper.h"

#include "config/SettingsWrapper.h"
#include "media/MprisPlayers.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "session/SlotTable.h"
#include "statistics/FlagNames.h"

#include <QProcess>
#include <QStandardPaths>
#include <tuple>

namespace {

QString mediaPlayer() {
    return SettingsWrapper::instance().MediaPlayer();
}

// The four values MediaPlayer has always known: the desktop player each
// stands for, its name in the Media section of Overrides.ini with the
// default, and the setting that holds the command to launch it.
struct KnownPlayer {
    const char* value;
    const char* desktopPlayer;
    const char* overrideKey;
    const char* defaultName;
    QString (SettingsWrapper::*launchCommand)() const;
};

constexpr KnownPlayer kKnownPlayers[] = {
    {"Winamp", "audacious", "Winamp", "Winamp", &SettingsWrapper::WinampDir},
    {"WMP", "vlc", "WindowsMediaPlayer", "WMP", &SettingsWrapper::WmpDir},
    {"iTunes", "rhythmbox", "iTunes", "iTunes", &SettingsWrapper::iTunesDir},
    {"foobar", "deadbeef", "foobar2000", "foobar2k", &SettingsWrapper::FoobarDir},
};

const KnownPlayer* knownPlayer(const QString& value) {
    for (const KnownPlayer& known : kKnownPlayers)
        if (value == QLatin1String(known.value)) return &known;
    return nullptr;
}

// Playing before paused before stopped before silent; then the one with the
// latest news.
auto preference(const MprisPlayer& p) {
    const int state = p.playbackStatus == u"Playing"  ? 2
                      : p.playbackStatus == u"Paused" ? 1
                      : p.playbackStatus.isEmpty()    ? -1
                                                      : 0;
    return std::make_tuple(state, p.lastChange);
}

} // namespace

SongWrapper& SongWrapper::instance() {
    static SongWrapper wrapper;
    return wrapper;
}

SongWrapper::SongWrapper() {
    connect(&SettingsWrapper::instance(), &SettingsWrapper::settingChanged, this,
            [this](const QString& property) {
                if (property != u"MediaPlayer") return;
                if (m_players)
                    songMayHaveChanged();
                else
                    Q_EMIT changed();
            });
}

SongWrapper::~SongWrapper() = default;

void SongWrapper::install() {
    MediaControl::install(&instance());
    // Watching from the start has the song ready for the first question.
    instance().watch();
}

void SongWrapper::useBus(const QDBusConnection& bus) {
    m_bus = bus;
    m_players.reset();
    m_watching = false;
    m_toldNoBus = false;
}

void SongWrapper::watch() {
    if (m_watching) return;
    m_watching = true;
    const QDBusConnection bus = m_bus.value_or(QDBusConnection::sessionBus());
    if (!bus.isConnected()) return;
    m_players = std::make_unique<MprisPlayers>(bus);
    connect(m_players.get(), &MprisPlayers::changed, this, &SongWrapper::songMayHaveChanged);
    connect(m_players.get(), &MprisPlayers::callFailed, this,
            [](const QString& busName, const QString& member, const QString& error) {
                WriteChat(SlotTable::instance().CurrentIndex(), Status::Warning,
                          QStringLiteral("The media player ") +
                              busName.mid(MprisPlayers::kPrefix.size()) +
                              QStringLiteral(" did not take the command ") + member +
                              QStringLiteral(": ") + error + u'.');
            });
}

MprisPlayers* SongWrapper::players() {
    watch();
    if (!m_players && !m_toldNoBus) {
        m_toldNoBus = true;
        WriteChat(0, Status::Warning,
                  QStringLiteral("There is no D-Bus session bus, so no media player can be seen "
                                 "or driven; the media commands answer as if none were running."));
    }
    return m_players.get();
}

const MprisPlayer* SongWrapper::selected(bool orAnyPlayer) {
    const MprisPlayers* all = players();
    if (!all) return nullptr;
    auto best = [all](auto fits) -> const MprisPlayer* {
        const MprisPlayer* found = nullptr;
        for (const MprisPlayer& p : all->players())
            if (fits(p) && (!found || preference(p) > preference(*found))) found = &p;
        return found;
    };
    const QString value = mediaPlayer();
    const QString desktop = DesktopPlayerFor(value);
    const QString wanted = desktop.isEmpty() ? value : desktop;
    if (const MprisPlayer* named = best([&](const MprisPlayer& p) { return p.isNamed(wanted); }))
        return named;
    // The four known names take any running player when their own is not.
    if (desktop.isEmpty() || !orAnyPlayer) return nullptr;
    return best([](const MprisPlayer&) { return true; });
}

QString SongWrapper::DesktopPlayerFor(const QString& mediaPlayer) {
    const KnownPlayer* known = knownPlayer(mediaPlayer);
    return known ? QLatin1String(known->desktopPlayer) : QString();
}

QString SongWrapper::DisplayName(const QString& player) {
    const KnownPlayer* known = knownPlayer(player);
    if (!known) return player;
    return ReadOverride(QStringLiteral("Media"), QLatin1String(known->overrideKey),
                        QLatin1String(known->defaultName));
}

QString SongWrapper::PlayerName() {
    const QString value = mediaPlayer();
    const MprisPlayer* player = selected();
    // A known name that fell back to another player shows that player's own
    // name, so the label never credits a player that is not there.
    const bool known = !DesktopPlayerFor(value).isEmpty();
    if (player && !(known && player->isNamed(DesktopPlayerFor(value))))
        return player->identity.isEmpty() ? player->name() : player->identity;
    return DisplayName(value);
}

bool SongWrapper::IsPlayerName(const QString& name) {
    if (name.isEmpty()) return false;
    if (const MprisPlayers* all = players()) {
        for (const MprisPlayer& p : all->players())
            if (p.isNamed(name)) return true;
    }
    return !QStandardPaths::findExecutable(name).isEmpty();
}

bool SongWrapper::Opened() {
    return selected() != nullptr;
}

bool SongWrapper::Playing() {
    const MprisPlayer* player = selected();
    return player && player->playbackStatus == u"Playing";
}

QString SongWrapper::CurrentSong() {
    const MprisPlayer* player = selected();
    if (!player || player->playbackStatus.isEmpty()) return {};
    const QString song = player->song();
    if (player->playbackStatus == u"Stopped" || song.isEmpty())
        return QStringLiteral("Not playing");
    return song;
}

QString SongWrapper::MusicLabel() {
    const QString name = PlayerName();
    if (!Opened()) return name + QStringLiteral(" is not running");
    return name + QStringLiteral(" >> ") + CurrentSong();
}

void SongWrapper::send(const QString& member, const QString& pluginEvent) {
    if (const MprisPlayer* player = selected()) players()->call(player->busName, member);
    PluginHost::instance().SendMediaEvent(pluginEvent, {});
}

void SongWrapper::NextSong() {
    send(QStringLiteral("Next"), QStringLiteral("NextSong"));
}

void SongWrapper::BackSong() {
    send(QStringLiteral("Previous"), QStringLiteral("PreviousSong"));
}

void SongWrapper::PlaySong() {
    send(QStringLiteral("Play"), QStringLiteral("PlaySong"));
}

void SongWrapper::PauseSong() {
    // Pauses a playing player and starts a paused one, as the button did.
    send(QStringLiteral("PlayPause"), QStringLiteral("PauseSong"));
}

void SongWrapper::StopSong() {
    send(QStringLiteral("Stop"), QStringLiteral("StopSong"));
}

void SongWrapper::Terminate() {
    const QString value = mediaPlayer();
    // A player that only stands in for the chosen one (a browser, say) is
    // the user's to close.
    if (const MprisPlayer* player = selected(false))
        players()->call(player->busName, QStringLiteral("Quit"));
    else if (Opened())
        WriteChat(SlotTable::instance().CurrentIndex(), Status::Warning,
                  QStringLiteral("Only the chosen player is closed from here; ") + PlayerName() +
                      QStringLiteral(" plays because ") + DisplayName(value) +
                      QStringLiteral(" is not running."));
    PluginHost::instance().SendMediaEvent(QStringLiteral("ClosePlayer"), {value});
}

QString SongWrapper::launchCommand(const QString& value) const {
    if (const KnownPlayer* known = knownPlayer(value))
        return (SettingsWrapper::instance().*known->launchCommand)();
    // A player chosen by its bus name is mostly started by that name.
    return QStandardPaths::findExecutable(value).isEmpty() ? QString() : value;
}

bool SongWrapper::Launch() {
    const QString value = mediaPlayer();
    const QString command = launchCommand(value).trimmed();
    const int view = SlotTable::instance().CurrentIndex();
    if (command.isEmpty()) {
        WriteChat(view, Status::Error,
                  QStringLiteral("Could not launch ") + value +
                      QStringLiteral(", you have not configured the application path yet."));
        return false;
    }
    QStringList words = QProcess::splitCommand(command);
    QProcess launch;
    launch.setProgram(words.isEmpty() ? QString() : words.takeFirst());
    launch.setArguments(words);
    // The player's own chatter stays off the bot's terminal.
    launch.setStandardOutputFile(QProcess::nullDevice());
    launch.setStandardErrorFile(QProcess::nullDevice());
    if (launch.program().isEmpty() || !launch.startDetached()) {
        WriteChat(view, Status::Error,
                  QStringLiteral("Could not launch ") + value + QStringLiteral(": \"") + command +
                      QStringLiteral("\" could not be started."));
        return false;
    }
    PluginHost::instance().SendMediaEvent(QStringLiteral("OpenPlayer"), {value});
    return true;
}

void SongWrapper::songMayHaveChanged() {
    Q_EMIT changed();
    PluginHost::instance().DispatchSongChange(CurrentSong());
}
