// Arbitrary lines with arbitrary ranks to the command dispatcher and to the
// typed-line and outgoing-line roads of a slot that is online, with sockets
// detached from the network.
#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "commands/CommandWrapper.h"
#include "commands/DatabaseWrapper.h"
#include "config/Folders.h"
#include "platform/ChatDocument.h"
#include "platform/Cp1252.h"
#include "platform/SocketControl.h"
#include "session/SlotTable.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

namespace {

int g_slot = 0;

// The speakers: the keyboard (no name), one user per rank level, a stranger.
const char* const kSpeakers[] = {"", "r100", "r90", "r80", "r70", "r30", "r20", "r10", "nobody"};
const int kRanks[] = {100, 90, 80, 70, 30, 20, 10};

void prepareSlot() {
    for (SocketControl* s : {&wsBNET(g_slot), &wsBNLS(g_slot)}) {
        s->sent.clear();
        s->simulateQuietConnection();
    }
    BotElement& bot = Bots(g_slot);
    bot.setOnline(true);
    bot.Queue.clear();
    rtbChat(g_slot).clear();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication app(*argc, *argv);
    static QTemporaryDir home;
    SetHomeFolder(home.path());
    g_slot = SlotTable::instance().LoadProfile(QStringLiteral("fuzz"));
    BotElement& bot = Bots(g_slot);
    bot.Config.setAccount(QStringLiteral("fuzzer"));
    bot.Config.setClient(QStringLiteral("D2XP"));
    bot.setDatabase(QStringLiteral("fuzz"));
    for (size_t i = 0; i < std::size(kRanks); ++i)
        DatabaseWrapper().AddUser(g_slot, QLatin1String(kSpeakers[i + 1]), kRanks[i]);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    prepareSlot();
    const QString speaker = QLatin1String(kSpeakers[data[0] % std::size(kSpeakers)]);
    const QString line = cp1252::decode(QByteArrayView(data + 2, qsizetype(size - 2)));
    switch (data[1] % 4) {
    case 0:
        CommandWrapper().SearchCommands(g_slot, speaker, line, false);
        break;
    case 1:
        CommandWrapper().SearchCommands(g_slot, speaker, line, true);
        break;
    case 2:
        SendUserLine(g_slot, line);
        break;
    default:
        SendChatLine(g_slot, line);
        break;
    }
    // What the commands queued leaves too, as the send queue would send it.
    const QStringList queued = Bots(g_slot).Queue;
    Bots(g_slot).Queue.clear();
    for (const QString& out : queued)
        SendChatLine(g_slot, out);
    return 0;
}
