#pragma once

#include <QString>

// The user's media player as the rest of the program asks for it: what it
// plays, and the commands that drive it. The media folder installs the real
// one at start; until then (and in programs without it) every question is
// answered as with no player running. Answers never wait for the player.
class MediaControl {
public:
    virtual ~MediaControl() = default;

    static MediaControl& instance();
    // Puts `control` in place of the current one; null restores the
    // player-less answers. The caller keeps ownership.
    static void install(MediaControl* control);

    // The display name of the chosen player.
    virtual QString PlayerName() { return {}; }
    // The display name that MediaPlayer value `player` would show.
    virtual QString DisplayName(const QString& player) { return player; }
    // Whether a MediaPlayer value other than the four known names names a
    // player of this desktop: one running now, or a program of that name.
    virtual bool IsPlayerName(const QString&) { return false; }
    virtual bool Opened() { return false; }
    // Starts the player; false, with a line in the active view, when it has
    // no launch command or the command could not be started.
    virtual bool Launch() { return false; }
    virtual void Terminate() {}
    // Empty when the player is not open.
    virtual QString CurrentSong() { return {}; }
    virtual void NextSong() {}
    virtual void BackSong() {}
    virtual void PlaySong() {}
    virtual void PauseSong() {}
    virtual void StopSong() {}
};
