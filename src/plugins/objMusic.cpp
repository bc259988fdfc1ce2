#include "plugins/objMusic.h"

#include "config/SettingsWrapper.h"
#include "platform/MediaControl.h"

namespace {

MediaControl& player() {
    return MediaControl::instance();
}

} // namespace

QString objMusic::GetTrack() const {
    return player().CurrentSong();
}

QString objMusic::GetPlayer() const {
    return SettingsWrapper::instance().MediaPlayer();
}

void objMusic::SetPlayer(const QString& Value) {
    SettingsWrapper::instance().setMediaPlayer(Value);
}

void objMusic::NextTrack() {
    player().NextSong();
}

void objMusic::PreviousTrack() {
    player().BackSong();
}

void objMusic::StopTrack() {
    player().StopSong();
}

void objMusic::PlayTrack() {
    player().PlaySong();
}

void objMusic::PauseTrack() {
    player().PauseSong();
}

bool objMusic::PlayerOpened() const {
    return player().Opened();
}

bool objMusic::OpenPlayer() {
    return player().Launch();
}

bool objMusic::ClosePlayer() {
    const bool opened = player().Opened();
    player().Terminate();
    return opened;
}
