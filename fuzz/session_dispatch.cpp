// Arbitrary frames from a server to the dispatch of a slot that is logged on,
// through the real socket events with a socket detached from the network.
//
// Liveness: whatever came, the slot is never deaf. Either its connection was
// closed with a line saying so, or a well-formed chat event sent next (after
// the frame left open is filled up) is shown.
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/SocketControl.h"
#include "session/PacketWriter.h"
#include "session/LogonRecord.h"
#include "session/SlotTable.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

int g_slot = 0;

// Connects what is closed, each new connection with an empty stream as a
// connect event leaves it.
void prepareSlot() {
    BotElement& bot = Bots(g_slot);
    const std::pair<SocketControl*, StreamBuffer*> sockets[] = {{&wsBNET(g_slot), &bot.InBNCS},
                                                               {&wsBNLS(g_slot), &bot.InBNLS}};
    for (const auto& [socket, stream] : sockets) {
        socket->sent.clear();
        if (socket->State() != SocketControl::Connected) stream->clear();
        socket->simulateQuietConnection();
    }
    bot.setOnline(true);
}

// Stops the run with the input saved, as libFuzzer does for a crash.
[[noreturn]] void deaf(const char* why) {
    std::fprintf(stderr, "liveness: %s\n", why);
    std::abort();
}

// Feeds one piece; a piece that closes the Battle.net connection must say so.
void feed(SocketControl& socket, const QByteArray& bytes) {
    const int before = rtbChat(g_slot).length();
    socket.simulateData(bytes);
    if (wsBNET(g_slot).State() != SocketControl::Connected && rtbChat(g_slot).length() == before)
        deaf("the connection was closed without a line");
}

// The bytes that finish the Battle.net frame left open in the stream: zeros
// up to its header, then up to its length.
QByteArray fillOpenFrame() {
    const StreamBuffer& in = Bots(g_slot).InBNCS;
    if (in.isEmpty()) return {};
    QByteArray fill(qMax(0, 4 - in.size()), '\0');
    const auto headerByte = [&](int k) { return k < in.size() ? in.at(k) : quint8(0); };
    const int length = headerByte(2) | (headerByte(3) << 8);
    const int have = in.size() + int(fill.size());
    if (length > have) fill.append(length - have, '\0');
    return fill;
}

void checkLiveness() {
    if (wsBNET(g_slot).State() != SocketControl::Connected) return;
    feed(wsBNET(g_slot), fillOpenFrame());
    if (wsBNET(g_slot).State() != SocketControl::Connected) return;
    static int probes = 0;
    const QString text = QStringLiteral("liveness probe %1").arg(++probes);
    PacketWriter w;
    w.WriteDWORD(5); // talk
    w.WriteDWORD(0);
    w.WriteDWORD(0);
    w.WriteVOID(QByteArray(12, '\0'));
    w.WriteSTRING(QStringLiteral("Liveness_Probe"));
    w.WriteSTRING(text);
    feed(wsBNET(g_slot), PacketWriter::frameBNCS(0x0F, w.payload()));
    if (wsBNET(g_slot).State() == SocketControl::Connected && !rtbChat(g_slot).text().contains(text))
        deaf("a chat event after the input was not shown");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication app(*argc, *argv);
    static QTemporaryDir home;
    SetHomeFolder(home.path());
    g_slot = SlotTable::instance().LoadProfile(QStringLiteral("fuzz"));
    ConfigWrapper& c = Bots(g_slot).Config;
    c.setAccount(QStringLiteral("fuzzer"));
    c.setPassword(QStringLiteral("secret"));
    c.setCdkey(QStringLiteral("7178075237576"));
    c.setServer(QStringLiteral("localhost"));
    c.setVerbyte(QStringLiteral("d3"));
    c.setClient(QStringLiteral("WAR3"));
    // Chat events are shown as they come, so the probe is seen at once.
    SettingsWrapper::instance().setFloodMode(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    prepareSlot();
    rtbChat(g_slot).clear();
    // The first byte picks the socket; the rest arrives in pieces of sizes the
    // input chooses.
    if (size < 1) return 0;
    const bool bnls = data[0] & 1;
    SocketControl& socket = bnls ? wsBNLS(g_slot) : wsBNET(g_slot);
    size_t pos = 1;
    while (pos < size) {
        const size_t piece = std::min<size_t>(size - pos, 1 + data[pos] % 128);
        feed(socket, QByteArray(reinterpret_cast<const char*>(data + pos), qsizetype(piece)));
        pos += piece;
        if (wsBNET(g_slot).State() != SocketControl::Connected ||
            socket.State() != SocketControl::Connected)
            prepareSlot();
    }
    checkLiveness();
    Bots(g_slot).InBNCS.clear();
    Bots(g_slot).InBNLS.clear();
    return 0;
}
