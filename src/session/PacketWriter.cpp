#include "session/PacketWriter.h"

#include "chat/BotElement.h"
#include "platform/Cp1252.h"
#include "platform/SocketControl.h"
#include "session/SlotTable.h"

namespace {

void appendLittleEndian(QByteArray& out, quint32 value, int width) {
    for (int i = 0; i < width; ++i)
        out.append(char((value >> (8 * i)) & 0xFF));
}

bool isChatOnly(quint8 id) {
    return id == 0x0E || id == 0x26 || id == 0x27 || id == 0x10;
}

} // namespace

void PacketWriter::WriteBYTE(quint8 data) {
    m_payload.append(char(data));
}

void PacketWriter::WriteWORD(quint16 data) {
    appendLittleEndian(m_payload, data, 2);
}

void PacketWriter::WriteDWORD(quint32 data) {
    appendLittleEndian(m_payload, data, 4);
}

void PacketWriter::WriteSTRING(const QString& data) {
    WriteSTRING(cp1252::encode(data));
}

void PacketWriter::WriteSTRING(const QByteArray& data) {
    m_payload.append(data);
    m_payload.append('\0');
}

void PacketWriter::WriteVOID(const QByteArray& data) {
    m_payload.append(data);
}

QByteArray PacketWriter::frameBNCS(quint8 id, const QByteArray& payload) {
    QByteArray frame;
    frame.reserve(payload.size() + 4);
    frame.append(char(0xFF));
    frame.append(char(id));
    // Only the low 16 bits of the length fit the header.
    appendLittleEndian(frame, quint32(payload.size() + 4), 2);
    frame.append(payload);
    return frame;
}

QByteArray PacketWriter::frameBNLS(quint8 id, const QByteArray& payload) {
    QByteArray frame;
    frame.reserve(payload.size() + 3);
    appendLittleEndian(frame, quint32(payload.size() + 3), 2);
    frame.append(char(id));
    frame.append(payload);
    return frame;
}

void PacketWriter::SendPacket(int BotIndex, quint8 PacketID, bool BNLS) {
    if (BNLS) {
        SocketControl& socket = wsBNLS(BotIndex);
        if (socket.State() == SocketControl::Connected)
            socket.SendData(frameBNLS(PacketID, m_payload));
    } else {
        SocketControl& socket = wsBNET(BotIndex);
        const bool refused = !Bots(BotIndex).Online() && isChatOnly(PacketID);
        if (socket.State() == SocketControl::Connected && !refused)
            socket.SendData(frameBNCS(PacketID, m_payload));
    }
    m_payload.clear();
}
