#pragma once

#include <QByteArray>
#include <QString>

// Builds the payload of one outgoing frame, field by field in wire order, and
// sends it. After SendPacket the writer is empty again, whether the frame went
// out or was refused, so nothing of a refused frame leaks into the next one.
class PacketWriter {
public:
    void WriteBYTE(quint8 data);
    void WriteWORD(quint16 data);
    void WriteDWORD(quint32 data);
    // The text in Windows-1252 and one NUL.
    void WriteSTRING(const QString& data);
    void WriteSTRING(const QByteArray& data);
    void WriteVOID(const QByteArray& data);

    // Frames the payload for the slot's Battle.net or BNLS socket and sends it
    // if that socket is connected. The four chat-only ids are held back while
    // the slot is not in chat.
    void SendPacket(int BotIndex, quint8 PacketID, bool BNLS = false);

    const QByteArray& payload() const { return m_payload; }
    void clear() { m_payload.clear(); }

    // Whole frames, for peers that are not a slot (the test server).
    static QByteArray frameBNCS(quint8 id, const QByteArray& payload);
    static QByteArray frameBNLS(quint8 id, const QByteArray& payload);

private:
    QByteArray m_payload;
};
