#include "commands/InformationCommands.h"

#include "chat/BotElement.h"
#include "commands/CommandContext.h"
#include "commands/DatabaseWrapper.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"
#include "statistics/FlagNames.h"
#include "statistics/NameFormat.h"
#include "statistics/Statstring.h"
#include "statistics/UserNames.h"

#include <QDate>
#include <QLocale>

namespace informationcommands {
namespace {

QString number(qint64 n) {
    return QString::number(n);
}

struct ChannelCounts {
    int representatives = 0;
    int operators = 0;
    int clanMembers = 0;
};

ChannelCounts countChannel(const BotElement& bot) {
    ChannelCounts counts;
    for (const UserElement& user : bot.Users) {
        if (user.Flags & 0x01)
            ++counts.representatives;
        else if (user.Flags & 0x02)
            ++counts.operators;
        QString clan;
        ParseStatstring(user.Statstring, false, clan);
        if (!clan.isEmpty()) ++counts.clanMembers;
    }
    return counts;
}

QString pingText(const UserElement& user) {
    return user.Username() + QStringLiteral("'s ping at login was [") + number(user.Ping) +
           QStringLiteral(" ms (") + GetPingStatus(user.Ping) + QStringLiteral(")]");
}

} // namespace

void Users(const CommandContext& c) {
    const ChannelCounts n = countChannel(Bots(c.Index));
    const QString head = QStringLiteral("There are ") + number(lvUsers(c.Index).count()) +
                         QStringLiteral(" users here, ");
    const QString tail = number(n.clanMembers) + QStringLiteral(" users belong to a clan.");
    const QString reps =
        number(n.representatives) + QStringLiteral(" are Blizzard representatives");
    const QString ops = number(n.operators) + QStringLiteral(" have ops");
    if (n.representatives > 0 && n.operators > 0)
        c.reply(head + reps + QStringLiteral(", ") + ops + QStringLiteral(" and ") + tail);
    else if (n.operators > 0)
        c.reply(head + ops + QStringLiteral(" and ") + tail);
    else if (n.representatives > 0)
        c.reply(head + reps + QStringLiteral(" and ") + tail);
    else
        c.reply(head + QStringLiteral("no one has ops and ") + tail);
}

void Uptime(const CommandContext& c) {
    const quint32 now = GetTickCount();
    c.reply(QStringLiteral("[Uptime] System: ") + FormatUptime(now) + QStringLiteral(", Bot: ") +
            FormatUptime(quint32(now - Machine().StartTick)) + QStringLiteral(", Connection: ") +
            FormatUptime(quint32(now - Bots(c.Index).OnlineTick)) + u'.');
}

void Time(const CommandContext& c) {
    const QString date = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
    c.reply(QStringLiteral("Current time/date on this computer is: ") +
            FormatLongTime(QTime::currentTime()) + QStringLiteral(", ") + date + u'.');
}

void Where(const CommandContext& c) {
    // From the keyboard there is nobody to whisper.
    if (c.FromConsole) return;
    c.queue(QStringLiteral("/w ") + c.Username + QStringLiteral(" I am currently in the channel ") +
            Bots(c.Index).Channel() + QStringLiteral(" (") + number(lvUsers(c.Index).count()) +
            QStringLiteral(" users)."));
}

void Version(const CommandContext& c) {
    c.reply(QStringLiteral("Corvantide v") + Machine().versionText());
}

void Ping(const CommandContext& c) {
    BotElement& bot = Bots(c.Index);
    const int position = bot.UserFind(c.Rest);
    if (position <= 0) {
        c.reply(QStringLiteral("Could not get ping of ") + c.Rest +
                QStringLiteral(" they are not in the channel."));
        return;
    }
    c.reply(pingText(bot.user(position)));
}

void UserInfo(const CommandContext& c) {
    BotElement& bot = Bots(c.Index);
    const int position = bot.UserFind(c.Rest);
    if (position <= 0) {
        c.reply(QStringLiteral("Could not get user information for ") + c.Rest +
                QStringLiteral(" they are not in the channel."));
        return;
    }
    const UserElement& user = bot.user(position);
    c.reply(pingText(user) + QStringLiteral(", they have been here for [") +
            FormatUptime(quint32(GetTickCount() - user.Uptime)) +
            QStringLiteral("], user has flags of [") + FormatHex(quint32(user.Flags), 2) +
            QStringLiteral(" (") + GetUserFlagNames(quint32(user.Flags)) + QStringLiteral(")]."));
}

void FindUser(const CommandContext& c) {
    QString name = ConvertUsername(c.Rest, false, -1);
    qint32 rank = 0;
    DatabaseWrapper().GrabRank(c.Index, name, rank);
    if (rank < 1)
        c.reply(QStringLiteral("Could not find that user."));
    else
        c.reply(name + QStringLiteral(" has a rank of ") + number(rank) + u'.');
}

} // namespace informationcommands
