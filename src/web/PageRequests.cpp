#include "web/PageRequests.h"

#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "session/SlotTable.h"

namespace {

using Answer = PageRequests::Answer;

Answer refused(const QString& text) {
    return {false, text};
}

// Lines pasted with line ends go one by one, as the input box sends them.
Answer send(int slot, const QString& text) {
    const QStringList lines = QString(text).replace(QLatin1String("\r\n"), QLatin1String("\n"))
                                  .split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines)
        SendUserLine(slot, line);
    return {true, {}};
}

Answer load(const QString& name) {
    SlotTable& table = SlotTable::instance();
    if (table.findProfile(name) > 0) return refused(QStringLiteral("'%1' is loaded already.").arg(name));
    for (const QString& stored : table.unloadedProfiles()) {
        if (stored.compare(name, Qt::CaseInsensitive) == 0) {
            table.LoadProfile(stored);
            return {true, QStringLiteral("Loaded '%1'.").arg(stored)};
        }
    }
    return refused(QStringLiteral("There is no profile '%1'.").arg(name));
}

void disconnectSlot(int slot) {
    BotElement& bot = Bots(slot);
    bot.CanConnect = false;
    bot.setOnline(false);
    bot.Connection.KillSocket(slot);
}

} // namespace

namespace PageRequests {

Answer Run(const QJsonObject& request) {
    const QString kind = request.value(QStringLiteral("t")).toString();
    const QString name = request.value(QStringLiteral("profile")).toString();
    if (kind == u"load") return load(name);
    SlotTable& table = SlotTable::instance();
    const int slot = name.isEmpty() ? 0 : table.findProfile(name);
    if (kind != u"send" && kind != u"unload" && kind != u"connect" && kind != u"disconnect")
        return refused(QStringLiteral("The bot does not know the request '%1'.").arg(kind));
    if (slot == 0) return refused(QStringLiteral("No profile '%1' is loaded.").arg(name));
    if (kind == u"send") return send(slot, request.value(QStringLiteral("line")).toString());
    if (kind == u"unload") {
        table.UnloadProfile(Bots(slot).Profile());
        return {true, QStringLiteral("Unloaded '%1'.").arg(name)};
    }
    if (kind == u"connect") {
        table.ConnectBot(slot);
        return {true, {}};
    }
    disconnectSlot(slot);
    return {true, {}};
}

} // namespace PageRequests
