#include "social/ClanCommands.h"

#include "presentation/ChatWriter.h"
#include "social/ClanNotices.h"
#include "social/ClanPacket.h"

namespace {

struct Command {
    const char* word;
    const char* arguments;
    const char* meaning;
    void (*run)(int Index, const QString& Rest);
};

// The founding's two steps: a tag alone finds candidates; with names and a
// clan's name behind it the candidates are invited.
void create(int Index, const QString& Rest) {
    const QStringList words = Rest.split(u' ', Qt::SkipEmptyParts);
    const QString tag = words.value(0);
    if (tag.size() < 2 || tag.size() > 4)
        return WriteChat(Index, Status::Error, QStringLiteral("A clan tag has 2 to 4 characters."));
    if (words.size() == 1) {
        ClanNotices::instance().foundingTyped(Index, tag);
        return ClanPacket::Output_FindCandidates(Index, tag);
    }
    const QStringList names = words.value(1).split(u',', Qt::SkipEmptyParts);
    const QString clanName = words.mid(2).join(u' ');
    if (names.size() < 9 || clanName.isEmpty())
        return WriteChat(Index, Status::Error,
                         QStringLiteral("You must check ATLEAST 9 candidates to invite to the "
                                        "clan! Type /myclan create TAG NAME,NAME,... CLAN NAME."));
    ClanNotices::instance().foundingTyped(Index, tag);
    ClanPacket::Output_InviteMultiple(Index, clanName, tag, names);
    WriteChat(Index, Status::Warning, QStringLiteral("Inviting candidates.."));
}

constexpr Command kCommands[] = {
    {"members", "", "lists the clan's members",
     [](int i, const QString&) { ClanPacket::WriteMembers(i); }},
    {"invite", " NAME", "invites a user into the clan", &ClanPacket::Output_Invite},
    {"promote", " NAME", "raises a member one rank", &ClanPacket::Promote},
    {"demote", " NAME", "lowers a member one rank", &ClanPacket::Demote},
    {"remove", " NAME", "removes a member from the clan", &ClanPacket::Remove},
    {"chieftain", " NAME", "hands the chieftain's rank to a member",
     &ClanPacket::Output_SetChieftain},
    {"motd", " TEXT", "sets the clan's message of the day", &ClanPacket::Output_SetMOTD},
    {"leave", "", "leaves the clan", [](int i, const QString&) { ClanPacket::Output_Quit(i); }},
    {"disband", "", "disbands the clan",
     [](int i, const QString&) { ClanPacket::Output_Disband(i); }},
    {"create", " TAG", "checks a tag and lists who can found the clan", &create},
    {"create", " TAG NAME,NAME,... CLAN NAME", "invites at least 9 of them to found it", &create},
};

} // namespace

namespace ClanCommands {

void Run(int Index, const QString& Rest) {
    const QString text = Rest.trimmed();
    const QString word = text.section(u' ', 0, 0).toLower();
    const QString argument = text.section(u' ', 1).trimmed();
    for (const Command& command : kCommands) {
        if (word == QLatin1String(command.word)) return command.run(Index, argument);
    }
    WriteChat(Index, Status::Error,
              QStringLiteral("Clan commands: ") + QLatin1String(kWord) +
                  QStringLiteral(" members, invite, promote, demote, remove, chieftain, motd, "
                                 "leave, disband or create."));
}

QStringList Usage() {
    QStringList lines;
    for (const Command& command : kCommands)
        lines << QLatin1String(kWord) + u' ' + QLatin1String(command.word) +
                     QLatin1String(command.arguments) + QStringLiteral(": ") +
                     QLatin1String(command.meaning);
    return lines;
}

} // namespace ClanCommands
