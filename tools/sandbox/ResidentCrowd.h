#pragma once

#include "sandbox/Resident.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QRandomGenerator>
#include <QTimer>
#include <memory>
#include <vector>

namespace sandbox {

class ChatHub;

// Simulated users who live in one channel: they talk, emote, whisper connected clients,
// answer whispers, leave for a while and come back, and now and then hand the operator's
// flag on. `rate` is the number of their actions a second, all together.
class ResidentCrowd : public QObject {
    Q_OBJECT

public:
    ResidentCrowd(ChatHub& hub, int count, double rate, const QString& channel, quint32 seed,
                  QObject* parent = nullptr);
    ~ResidentCrowd() override;

    // Everyone enters and joins the channel, and the actions begin.
    void start();
    int size() const { return int(m_residents.size()); }
    quint64 actions() const { return m_actions; }
    // One action, now; the timer calls it `rate` times a second.
    void act();
    // Stops and restarts the actions; a paused crowd still answers whispers. Nothing missed
    // while paused is made up afterwards.
    void pause();
    void resume();
    bool paused() const { return m_paused; }

private:
    void tick();
    void comeBack(Resident& r);
    void answerWhisper(Resident& r, const QString& from, const QString& text);
    Resident* pickOnline();
    QString pickLine();

    ChatHub& m_hub;
    double m_rate;
    QString m_channel;
    QRandomGenerator m_random;
    std::vector<std::unique_ptr<Resident>> m_residents;
    QTimer m_timer;
    QElapsedTimer m_clock;
    quint64 m_actions = 0;
    quint64 m_skipped = 0; // actions that came due in a stall or a pause and were let go
    bool m_paused = false;
    QHash<QString, qint64> m_lastAnswer; // resident and sender to when it last answered
};

} // namespace sandbox
