#include "plugins/objMusic.h"

#include "config/SettingsWrapper.h"

QString objMusic::GetPlayer() const {
    return SettingsWrapper::instance().MediaPlayer();
}

void objMusic::SetPlayer(const QString& Value) {
    SettingsWrapper::instance().setMediaPlayer(Value);
}
