#include "commands/MediaCommands.h"

#include "commands/CommandContext.h"
#include "config/SettingsWrapper.h"
#include "platform/MediaControl.h"

namespace mediacommands {
namespace {

MediaControl& media() {
    return MediaControl::instance();
}

QString player() {
    return SettingsWrapper::instance().MediaPlayer();
}

// Sends the command when the player runs and says so; otherwise asks the
// user to launch it.
void drive(const CommandContext& c, void (MediaControl::*command)(), const char* done,
           const char* cannot) {
    if (!media().Opened()) {
        c.reply(QLatin1String(cannot) + QStringLiteral(", Please launch ") + player() + u'.');
        return;
    }
    (media().*command)();
    c.reply(QLatin1String(done));
}

} // namespace

void Next(const CommandContext& c) {
    drive(c, &MediaControl::NextSong, "Skipped to next song.", "Cannot change song");
}

void Previous(const CommandContext& c) {
    drive(c, &MediaControl::BackSong, "Skipped to previous song.", "Cannot change song");
}

void Play(const CommandContext& c) {
    drive(c, &MediaControl::PlaySong, "Playback started.", "Cannot start playback");
}

void Pause(const CommandContext& c) {
    drive(c, &MediaControl::PauseSong, "Playback paused.", "Cannot pause playback");
}

void Stop(const CommandContext& c) {
    drive(c, &MediaControl::StopSong, "Playback stopped.", "Cannot stop playback");
}

void LoadPlayer(const CommandContext& c) {
    c.reply(QStringLiteral("Attempting to launch ") + player() + QStringLiteral(".."));
    media().Launch();
}

void UnloadPlayer(const CommandContext& c) {
    c.reply(QStringLiteral("Attempting to terminate ") + player() + QStringLiteral(".."));
    media().Terminate();
}

void Song(const CommandContext& c) {
    c.reply(u'[' + player() + QStringLiteral("] ") + media().CurrentSong());
}

void SetPlayer(const CommandContext& c) {
    static const QStringList known{QStringLiteral("iTunes"), QStringLiteral("Winamp"),
                                   QStringLiteral("WMP"), QStringLiteral("foobar")};
    QString chosen;
    for (const QString& name : known)
        if (c.Rest.compare(name, Qt::CaseInsensitive) == 0) chosen = name;
    // Any other player of this desktop goes by its own name ("vlc").
    if (chosen.isEmpty() && media().IsPlayerName(c.Rest)) chosen = c.Rest;
    if (chosen.isEmpty()) {
        c.reply(QStringLiteral("Invalid media player, try foobar, iTunes, Winamp or WMP."));
        return;
    }
    if (!SettingsWrapper::instance().setMediaPlayer(chosen)) {
        // The store's own red line says why; the channel hears that it failed.
        if (!c.FromConsole) c.reply(QStringLiteral("Could not save the media player."));
        return;
    }
    c.reply(QStringLiteral("Changed current media player to ") + media().DisplayName(chosen));
}

} // namespace mediacommands
