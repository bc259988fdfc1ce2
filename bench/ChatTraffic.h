#pragma once

// What a busy channel sends, for the benchmarks that feed one to a slot.
#include "session/PacketWriter.h"

#include <QByteArray>
#include <QString>

// A chat event (SID_CHATEVENT) as the server frames it.
inline QByteArray chatEvent(quint32 id, quint32 flags, const QString& user, const QString& text,
                            quint32 ping = 60) {
    PacketWriter w;
    w.WriteDWORD(id);
    w.WriteDWORD(flags);
    w.WriteDWORD(ping);
    w.WriteVOID(QByteArray(12, '\0'));
    w.WriteSTRING(user);
    w.WriteSTRING(text);
    return PacketWriter::frameBNCS(0x0F, w.payload());
}

// Statstrings of the six products in turn, from plain to clan-tagged.
inline QString sampleStatstring(int i) {
    static const char* const products[] = {"RATS 0 0 3",  "PXES 1200 0 12",   "NB2W 0 0 0",
                                           "3RAW 2H3W 0", "PX3W 3U3W 0 LCAT", "VD2D"};
    return QString::fromLatin1(products[i % 6]);
}
