#include "chat/SendQueue.h"

#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "platform/TickCount.h"
#include "session/SlotTable.h"

namespace sendqueue {

int& QueueBurst() {
    static int burst = 0;
    return burst;
}

int WaitAfter(int length, int burst) {
    if (length >= 70)
        return 1700 + 40 * length;
    return burst < 4 ? 1500 + 38 * length : 1700 + 45 * length;
}

void SendStep(int Index) {
    BotElement& bot = Bots(Index);
    if (bot.Queue.isEmpty()) {
        QueueBurst() = 0;
        return;
    }
    if (qint64(TicksSince(bot.QueueLast)) <= qint64(bot.QueueWait))
        return;
    bot.QueueLast = GetTickCount();
    ++QueueBurst();
    const QString line = bot.Queue.first();
    bot.QueueWait = WaitAfter(int(line.size()), QueueBurst());
    SendChatLine(Index, line);
    // The line may have been taken already if the slot was emptied meanwhile.
    if (!bot.Queue.isEmpty())
        bot.Queue.removeFirst();
}

} // namespace sendqueue
