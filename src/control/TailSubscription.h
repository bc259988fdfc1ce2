#pragma once

#include "control/ChatFeed.h"

#include <QObject>
#include <QString>

class QLocalSocket;

// A follower of one profile (or of the console) on the control channel:
// `corvantide tail [PROFILE] [-n N]`. It gets the last N lines the views hold,
// then every line of the profile's chat and whisper views as it is written,
// until it goes away. What it has not read yet is bounded: past the bound its
// lines are dropped and counted, and it is told how many once it catches up,
// so a slow or stopped reader never holds the bot back nor grows its memory.
class TailSubscription : public QObject {
    Q_OBJECT
public:
    // Unsent bytes a follower may have before its lines are dropped.
    static constexpr qint64 kQueueLimit = 256 * 1024;

    // Takes the request line when it asks to follow: the socket then belongs
    // to a new subscription, or has been answered with a refusal. False for
    // any other request.
    static bool Take(QLocalSocket* socket, const QByteArray& requestLine);

private:
    TailSubscription(QLocalSocket* socket, const QString& profile);
    void start(int history);
    void linesWritten(const QList<FeedLine>& lines);
    void sendLine(const FeedLine& line);
    void catchUp();
    void write(const QByteArray& message);

    QLocalSocket* m_socket;
    QString m_profile; // empty for the console
    int m_slot = 0;    // where the profile is loaded; 0 while it is not
    qint64 m_skipped = 0;
};
