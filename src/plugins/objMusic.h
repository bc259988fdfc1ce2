#pragma once

#include <QObject>

// The media player as scripts see it. The bot has no player control yet, so
// every member answers as it does when no player is open; the chosen player
// is the setting MediaPlayer.
class objMusic : public QObject {
    Q_OBJECT
public:
    explicit objMusic(QObject* parent = nullptr) : QObject(parent) {}

    Q_INVOKABLE QString GetTrack() const { return {}; }
    Q_INVOKABLE QString GetPlayer() const;
    Q_INVOKABLE void SetPlayer(const QString& Value);
    Q_INVOKABLE void NextTrack() {}
    Q_INVOKABLE void PreviousTrack() {}
    Q_INVOKABLE void StopTrack() {}
    Q_INVOKABLE void PlayTrack() {}
    Q_INVOKABLE void PauseTrack() {}
    Q_INVOKABLE bool PlayerOpened() const { return false; }
    Q_INVOKABLE bool OpenPlayer() { return false; }
    Q_INVOKABLE bool ClosePlayer() { return false; }
};
