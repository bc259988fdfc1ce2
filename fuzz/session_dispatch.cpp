// Arbitrary frames from a server to the dispatch of a slot that is logged on,
// through the real socket events with a socket detached from the network.
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "platform/SocketControl.h"
#include "session/LogonRecord.h"
#include "session/SlotTable.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

namespace {

int g_slot = 0;

void prepareSlot() {
    for (SocketControl* s : {&wsBNET(g_slot), &wsBNLS(g_slot)}) {
        s->sent.clear();
        s->simulateQuietConnection();
    }
    Bots(g_slot).setOnline(true);
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
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    prepareSlot();
    // The first byte picks the socket; the rest arrives in pieces of sizes the
    // input chooses.
    if (size < 1) return 0;
    const bool bnls = data[0] & 1;
    SocketControl& socket = bnls ? wsBNLS(g_slot) : wsBNET(g_slot);
    size_t pos = 1;
    while (pos < size) {
        const size_t piece = std::min<size_t>(size - pos, 1 + data[pos] % 128);
        socket.simulateData(
            QByteArray(reinterpret_cast<const char*>(data + pos), qsizetype(piece)));
        pos += piece;
        if (socket.State() != SocketControl::Connected) prepareSlot();
    }
    Bots(g_slot).InBNCS.clear();
    Bots(g_slot).InBNLS.clear();
    return 0;
}
