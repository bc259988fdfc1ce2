#include "gui/MusicPanel.h"

#include "media/SongWrapper.h"

#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

SongWrapper& song() {
    return SongWrapper::instance();
}

} // namespace

MusicPanel::MusicPanel(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    addButton("lblMusicOpen", "Open/close media player",
              [] { song().Opened() ? song().Terminate() : void(song().Launch()); });
    addButton("lblMusicPlay", "Toggle play",
              [] { song().Playing() ? song().PauseSong() : song().PlaySong(); });
    addButton("lblMusicStop", "Stop", [] { song().StopSong(); });
    addButton("lblMusicPrevious", "Previous", [] { song().BackSong(); });
    addButton("lblMusicNext", "Next", [] { song().NextSong(); });
    QToolButton* settings = addButton("lblMusicSettings", "Settings", [] {});
    connect(settings, &QToolButton::clicked, this, &MusicPanel::settingsRequested);
    m_song = new QLabel;
    m_song->setObjectName(QStringLiteral("lblMusicSong"));
    m_song->setWordWrap(true);
    m_song->setMinimumWidth(160);
    m_song->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_song);
    layout->addStretch(1);
    connect(&song(), &SongWrapper::changed, this, &MusicPanel::refresh);
    m_poll = new QTimer(this);
    m_poll->setInterval(500);
    connect(m_poll, &QTimer::timeout, this, &MusicPanel::refresh);
}

QToolButton* MusicPanel::addButton(const char* name, const char* caption, void (*action)()) {
    auto* button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setText(QLatin1String(caption));
    button->setAutoRaise(true);
    button->setCursor(Qt::PointingHandCursor);
    connect(button, &QToolButton::clicked, this, [this, action] {
        action();
        refresh();
        Q_EMIT used();
    });
    layout()->addWidget(button);
    return button;
}

void MusicPanel::refresh() {
    const QString text = song().MusicLabel();
    if (m_song->text() != text) m_song->setText(text);
}

void MusicPanel::showEvent(QShowEvent* event) {
    refresh();
    m_poll->start();
    QWidget::showEvent(event);
}

void MusicPanel::hideEvent(QHideEvent* event) {
    m_poll->stop();
    QWidget::hideEvent(event);
}
