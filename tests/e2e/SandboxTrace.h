#pragma once

// The frames a sandbox started with --trace-file wrote down, as the server
// saw them: when, on which link, in which direction, and their bytes.
#include <QByteArray>
#include <QFile>
#include <QList>
#include <QtEndian>
#include <vector>

struct TracedFrame {
    qint64 ms = 0;        // since the sandbox started
    QByteArray link;      // "bncs" or "bnls"
    QByteArray direction; // "in" from the bot, "out" to it
    QByteArray id;        // "0x0e", or "proto" for the protocol byte
    QByteArray frame;     // the whole frame, header included

    // The 32-bit value at `offset` of the frame's body (after its header).
    quint32 dword(int offset) const {
        return qFromLittleEndian<quint32>(frame.constData() + 4 + offset);
    }
};

inline std::vector<TracedFrame> readTrace(const QString& path) {
    QFile file(path);
    std::vector<TracedFrame> frames;
    if (!file.open(QIODevice::ReadOnly)) return frames;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> f = line.split(' ');
        if (f.size() >= 7 && f[0] == "trace" && (f[4] == "in" || f[4] == "out"))
            frames.push_back({f[1].toLongLong(), f[2], f[4], f[5], QByteArray::fromHex(f[6])});
    }
    return frames;
}

// The chat lines (SID_CHATCOMMAND) the bot sent, in order.
inline QList<QByteArray> chatLinesSent(const QString& path) {
    QList<QByteArray> lines;
    for (const TracedFrame& t : readTrace(path)) {
        if (t.link == "bncs" && t.direction == "in" && t.id == "0x0e")
            lines << t.frame.mid(4).chopped(1);
    }
    return lines;
}
