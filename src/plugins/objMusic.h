#pragma once

#include <QObject>

// The media player as scripts see it: the one player chosen by the setting
// MediaPlayer, asked and driven as the bot's own commands do.
class objMusic : public QObject {
    Q_OBJECT
public:
    explicit objMusic(QObject* parent = nullptr) : QObject(parent) {}

    Q_INVOKABLE QString GetTrack() const;
    Q_INVOKABLE QString GetPlayer() const;
    Q_INVOKABLE void SetPlayer(const QString& Value);
    Q_INVOKABLE void NextTrack();
    Q_INVOKABLE void PreviousTrack();
    Q_INVOKABLE void StopTrack();
    Q_INVOKABLE void PlayTrack();
    Q_INVOKABLE void PauseTrack();
    Q_INVOKABLE bool PlayerOpened() const;
    Q_INVOKABLE bool OpenPlayer();
    // True when there was a player to close.
    Q_INVOKABLE bool ClosePlayer();
};
