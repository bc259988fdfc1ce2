#pragma once

#include <QWidget>

class QLabel;
class QTimer;
class QToolButton;

// The music panel: the chosen player's song, and buttons that open or close
// the player, toggle playback, stop, and skip back and forth.
class MusicPanel : public QWidget {
    Q_OBJECT
public:
    explicit MusicPanel(QWidget* parent = nullptr);

    QLabel* lblMusicSong() const { return m_song; }
    // Shows what the player plays now; only a changed text is set.
    void refresh();

Q_SIGNALS:
    // A button did its work; the input box takes the keys again.
    void used();
    // "Settings": the media page of the control panel.
    void settingsRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QToolButton* addButton(const char* name, const char* caption, void (*action)());

    QLabel* m_song = nullptr;
    // Catches what no player signal tells: another chosen player, renamed
    // players in Overrides.ini.
    QTimer* m_poll = nullptr;
};
