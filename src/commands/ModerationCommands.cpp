#include "commands/ModerationCommands.h"

#include "commands/BlocksAndFilters.h"
#include "commands/CommandContext.h"
#include "commands/DatabaseWrapper.h"
#include "config/FileHandler.h"

#include <QStringList>

namespace moderationcommands {
namespace {

qint32 rankOf(int Index, QString name) {
    qint32 rank = 0;
    DatabaseWrapper().GrabRank(Index, name, rank);
    return rank;
}

// Anyone in the userbase, at any rank, is spared. The whole argument is looked
// up, so a name followed by a reason finds nobody.
void queueUnlessProtected(const CommandContext& c, const char* command, const char* refusal) {
    if (rankOf(c.Index, c.Rest) != 0) {
        c.reply(QLatin1String(refusal));
        return;
    }
    c.queue(QLatin1String(command) + u' ' + c.Rest);
}

QString cutAtHash(const QString& name) {
    const qsizetype hash = name.indexOf(u'#');
    return hash < 0 ? name : name.left(hash);
}

// The server commands a user below rank 90 may not have the bot say.
bool isGuardedServerCommand(const QString& word) {
    static const QStringList guarded = {
        QStringLiteral("BAN"),       QStringLiteral("UNBAN"),    QStringLiteral("IGNORE"),
        QStringLiteral("REJOIN"),    QStringLiteral("RESIGN"),   QStringLiteral("JOIN"),
        QStringLiteral("CHANNEL"),   QStringLiteral("UNIGNORE"), QStringLiteral("SQUELCH"),
        QStringLiteral("UNSQUELCH"), QStringLiteral("KICK"),     QStringLiteral("O"),
        QStringLiteral("OPTIONS")};
    return guarded.contains(word);
}

} // namespace

void Ban(const CommandContext& c) {
    queueUnlessProtected(c, "/ban", "Could not ban that user they are in the database.");
}

void Kick(const CommandContext& c) {
    queueUnlessProtected(c, "/kick", "Could not kick that user they are in the database.");
}

void Ignore(const CommandContext& c) {
    queueUnlessProtected(c, "/ignore", "Could not ignore that user they are in the database.");
}

void Block(const CommandContext& c) {
    const qsizetype blank = c.Rest.indexOf(u' ');
    const QString first = blank < 0 ? c.Rest : c.Rest.left(blank);
    const qint32 rank = rankOf(c.Index, first);
    const QString name = cutAtHash(first);
    QString cause;
    if (rank != 0) {
        c.reply(QStringLiteral("Could not ignore that user they are in the database."));
    } else if (AddBlock(name, &cause)) {
        c.reply(QStringLiteral("Added block for ") + name +
                QStringLiteral(", you should not see them chatting anymore."));
    } else if (!cause.isEmpty()) {
        c.notSaved(QStringLiteral("Could not add a block for ") + name, cause);
    } else {
        c.reply(QStringLiteral("Block already exists for that user."));
    }
}

void Unblock(const CommandContext& c) {
    const QString name = cutAtHash(c.Rest);
    QString cause;
    if (RemoveBlock(name, &cause))
        c.reply(QStringLiteral("Removed block for ") + name +
                QStringLiteral(", you should see them chatting again."));
    else if (!cause.isEmpty())
        c.notSaved(QStringLiteral("Could not remove the block for ") + name, cause);
    else
        c.reply(QStringLiteral("Block does not exist for that user."));
}

void AddUser(const CommandContext& c) {
    if (!c.Rest.contains(u' ')) {
        c.reply(QStringLiteral(
            "Please include the username you want to add followed by their rank (1-100)."));
        return;
    }
    const QStringList pieces = c.Rest.split(u' ');
    const QString& name = pieces.at(0);
    const QString& rankText = pieces.at(1);
    // Equal counts as higher: nobody hands out their own rank, so 100 is
    // never given by command.
    if (LeadingNumber(rankText) >= c.Rank) {
        c.reply(QStringLiteral("Could not add user, rank specified is higher than yours."));
        return;
    }
    bool whole = false;
    const qint32 rank = rankText.toInt(&whole);
    DatabaseWrapper database;
    if (whole && database.AddUser(c.Index, name, rank)) {
        c.reply(QStringLiteral("Added ") + name + QStringLiteral(" to the userbase."));
    } else if (!database.writeError().isEmpty()) {
        c.notSaved(QStringLiteral("Could not add ") + name + QStringLiteral(" to the userbase"),
                   database.writeError());
    } else {
        c.reply(
            QStringLiteral("Could not add user, invalid rank or user already exists in userbase."));
    }
}

void RemoveUser(const CommandContext& c) {
    QString stored = c.Rest;
    qint32 rank = 0;
    DatabaseWrapper database;
    database.GrabRank(c.Index, stored, rank);
    if (rank >= c.Rank) {
        c.reply(QStringLiteral("Could not remove user, rank of that user is higher than yours."));
    } else if (rank == 0) {
        c.reply(QStringLiteral("Could not remove user, user not found in userbase."));
    } else if (!database.RemoveUser(c.Index, stored) && !database.writeError().isEmpty()) {
        c.notSaved(QStringLiteral("Could not remove ") + stored +
                       QStringLiteral(" from the userbase"),
                   database.writeError());
    } else {
        c.reply(QStringLiteral("Removed ") + stored + QStringLiteral(" from the userbase."));
    }
}

void Say(const CommandContext& c) {
    if (c.Rank >= 90 || !c.Rest.startsWith(u'/')) {
        c.queue(c.Rest);
        return;
    }
    const QStringList words = c.Rest.split(u' ');
    if (words.size() > 1 && isGuardedServerCommand(words.first().mid(1).toUpper()))
        c.queue(QStringLiteral("Insufficient permission to send that message."));
    else
        c.queue(c.Rest);
}

} // namespace moderationcommands
