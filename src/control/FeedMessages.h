#pragma once

#include "control/ChatFeed.h"

#include <QByteArray>
#include <QString>

// What a follower of a running bot receives, one JSON object a line: a
// finished line of a view with its runs ({"event":"line","profile","view":
// "chat"|"whisper","runs":[{"text","color":"#rrggbb","bold",...}]}), the
// count of lines dropped while the follower fell behind ({"event":"skipped",
// "lines":N}), and notices about the followed slot ({"event":"notice",
// "text"}). The same messages serve any front end that follows a bot.
namespace FeedMessages {

QByteArray Line(const FeedLine& line, const QString& profile);
// The same line added to the end of `out`: a burst of lines is one message.
void AppendLine(QByteArray& out, const FeedLine& line, const QString& profile);
QByteArray Skipped(qint64 lines);
QByteArray Notice(const QString& text);

// One message as read back.
struct Message {
    enum Kind { Unknown, Line, Skipped, Notice } kind = Unknown;
    QString profile;
    bool whisper = false;
    std::vector<TextRun> runs;
    qint64 lines = 0;
    QString text;
};
Message Read(const QByteArray& json);

} // namespace FeedMessages
