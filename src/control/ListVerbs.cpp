#include "control/ListVerbs.h"

#include "commands/AliasGroupEditor.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "commands/MacroWrapper.h"
#include "statistics/UserNames.h"

#include <optional>

namespace {

VerbResult listing(const QStringList& lines, const QString& none) {
    return VerbResult::done(lines.isEmpty() ? none : lines.join(u'\n'));
}

VerbResult notWritten(const QString& file, const QString& cause, const QString& kept) {
    return VerbResult::refused(QStringLiteral("Could not write ") + file + QStringLiteral(": ") +
                               cause + QStringLiteral("; ") + kept + u'.');
}

qsizetype indexOf(const QStringList& list, const QString& text) {
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (list[i].compare(text, Qt::CaseInsensitive) == 0) return i;
    }
    return -1;
}

QStringList withoutEmpty(QStringList list) {
    list.removeAll(QString());
    return list;
}

// Filters -------------------------------------------------------------------

VerbResult changeFilter(bool add, const QString& pattern) {
    QStringList lines = withoutEmpty(MessageFilters());
    const qsizetype at = indexOf(lines, pattern);
    if (add) {
        // A line without a wildcard is no filter: the list skips it on load.
        if (!pattern.contains(u'*'))
            return VerbResult::refused(QStringLiteral("A filter needs a '*', which stands for any "
                                                      "run of characters: '*") +
                                       pattern + QStringLiteral("*' holds back every line with ") +
                                       pattern + QStringLiteral(" in it."));
        if (at >= 0) return VerbResult::refused(Quoted(pattern) + QStringLiteral(" is a filter already."));
        lines.append(pattern);
    } else {
        if (at < 0)
            return VerbResult::refused(QStringLiteral("There is no filter ") + Quoted(pattern) + u'.');
        lines.removeAt(at);
    }
    QString cause;
    if (!ReplaceMessageFiltersFile(lines, &cause))
        return notWritten(QStringLiteral("MessageFilters.ini"), cause,
                          QStringLiteral("the filters are as they were"));
    return VerbResult::done((add ? QStringLiteral("Added filter ") : QStringLiteral("Removed filter ")) +
                            Quoted(pattern) + u'.');
}

VerbResult filter(const QStringList& args) {
    const QString verb = args.value(1).toLower();
    if (verb == u"list" && args.size() == 2)
        return listing(withoutEmpty(MessageFilters()),
                       QStringLiteral("No message filters yet; add one with: corvantide filter "
                                      "add '*word*'"));
    if ((verb == u"add" || verb == u"remove") && args.size() == 3)
        return changeFilter(verb == u"add", args[2]);
    return VerbResult::usage(QStringLiteral("filter list|add PATTERN|remove PATTERN"));
}

// Blocked users -------------------------------------------------------------

VerbResult block(const QStringList& args) {
    const QString verb = args.value(1).toLower();
    if (verb == u"list" && args.size() == 2)
        return listing(withoutEmpty(BlockedUsers()),
                       QStringLiteral("No one is blocked; block a name with: corvantide block add "
                                      "NAME"));
    if ((verb != u"add" && verb != u"remove") || args.size() != 3)
        return VerbResult::usage(QStringLiteral("block list|add NAME|remove NAME"));
    const bool add = verb == u"add";
    const QString& name = args[2];
    QString cause;
    if (add ? AddBlock(name, &cause) : RemoveBlock(name, &cause))
        return VerbResult::done((add ? QStringLiteral("Blocked ") : QStringLiteral("Unblocked ")) +
                                Quoted(name) + u'.');
    if (!cause.isEmpty())
        return notWritten(QStringLiteral("BlockedUsers.ini"), cause,
                          QStringLiteral("the blocked users are as they were"));
    return VerbResult::refused(Quoted(name) + (add ? QStringLiteral(" is blocked already.")
                                                   : QStringLiteral(" is not blocked.")));
}

// Macros --------------------------------------------------------------------

VerbResult macro(const QStringList& args) {
    MacroWrapper& macros = MacroWrapper::instance();
    const QString verb = args.value(1).toLower();
    const qsizetype n = args.size();
    if (verb == u"list" && n == 2)
        return listing(macros.Names(), QStringLiteral("No macros yet; add a line to one with: "
                                                      "corvantide macro add NAME LINE"));
    if (verb == u"list" && n == 3) {
        QStringList lines;
        bool found = false;
        macros.Grab(args[2], lines, found);
        if (!found)
            return VerbResult::refused(QStringLiteral("There is no macro ") + Quoted(args[2]) + u'.');
        return listing(lines, Quoted(args[2]) + QStringLiteral(" has no lines."));
    }
    QString cause;
    if (verb == u"add" && n >= 4) {
        const QString line = args.mid(3).join(u' ');
        if (!macros.AddLine(args[2], line, &cause))
            return VerbResult::refused(cause + QStringLiteral("; Macros.ini is as it was."));
        return VerbResult::done(QStringLiteral("Added a line to macro ") + Quoted(args[2]) + u'.');
    }
    if (verb == u"remove" && n == 3) {
        if (macros.RemoveMacro(args[2], &cause))
            return VerbResult::done(QStringLiteral("Removed macro ") + Quoted(args[2]) + u'.');
        if (cause.isEmpty())
            return VerbResult::refused(QStringLiteral("There is no macro ") + Quoted(args[2]) + u'.');
        return notWritten(QStringLiteral("Macros.ini"), cause,
                          QStringLiteral("the macros are as they were"));
    }
    return VerbResult::usage(QStringLiteral("macro list [NAME]|add NAME LINE|remove NAME"));
}

// Aliases and groups ----------------------------------------------------------

// The two kinds of named member lists, each through its control panel page's
// operations.
struct MemberList {
    const char* word;
    QStringList (*names)();
    QStringList (*members)(const QString&);
    ManageOutcome (*create)(const QString&);
    ManageOutcome (*remove)(const QString&);
    ManageOutcome (*save)(const QString&, const QStringList&);
};

ManageOutcome saveGroupMembers(const QString& name, const QStringList& members) {
    return AliasGroupEditor::SaveGroup(name, members, GetGroupColor(name), GetGroupPrefix(name));
}

const MemberList kAliases{"alias",
                          AliasGroupEditor::AliasNames,
                          AliasGroupEditor::AliasMembers,
                          AliasGroupEditor::NewAlias,
                          AliasGroupEditor::RemoveAlias,
                          AliasGroupEditor::SaveAlias};
const MemberList kGroups{"group",
                         AliasGroupEditor::GroupNames,
                         AliasGroupEditor::GroupMembers,
                         AliasGroupEditor::NewGroup,
                         AliasGroupEditor::RemoveGroup,
                         saveGroupMembers};

QString kindName(const MemberList& kind) {
    return QString::fromLatin1(kind.word);
}

// The stored spelling of the entry, or empty when there is none.
QString storedName(const MemberList& kind, const QString& name) {
    const QStringList names = kind.names();
    const qsizetype at = indexOf(names, name);
    return at < 0 ? QString() : names[at];
}

VerbResult noSuch(const MemberList& kind, const QString& name) {
    return VerbResult::refused(QStringLiteral("There is no ") + kindName(kind) + u' ' +
                               Quoted(name) + u'.');
}

VerbResult outcome(const ManageOutcome& result, const QString& done) {
    return result.ok ? VerbResult::done(done) : VerbResult::refused(result.warning);
}

// Makes the entry when it is new and adds the members it lacks.
VerbResult addMembers(const MemberList& kind, const QString& name, const QStringList& added) {
    QString stored = storedName(kind, name);
    const bool made = stored.isEmpty();
    if (made) {
        const ManageOutcome created = kind.create(name);
        if (!created.ok) return VerbResult::refused(created.warning);
        stored = name;
    } else if (added.isEmpty()) {
        QString title = kindName(kind);
        title[0] = title[0].toUpper();
        return VerbResult::refused(title + u' ' + Quoted(stored) + QStringLiteral(" exists already."));
    }
    const QString what = QStringLiteral(" ") + kindName(kind) + u' ' + Quoted(stored);
    if (added.isEmpty()) return VerbResult::done(QStringLiteral("Made") + what + u'.');
    QStringList members = kind.members(stored);
    for (const QString& member : added) {
        if (indexOf(members, ConvertUsername(member, false, -1)) < 0) members.append(member);
    }
    const ManageOutcome saved = kind.save(stored, members);
    if (!saved.ok) return VerbResult::refused(saved.warning);
    return VerbResult::done((made ? QStringLiteral("Made") : QStringLiteral("Changed")) + what +
                            QStringLiteral(": ") + kind.members(stored).join(QStringLiteral(", ")) +
                            u'.');
}

// Removes the entry, or only the members named.
VerbResult removeMembers(const MemberList& kind, const QString& name, const QStringList& removed) {
    const QString stored = storedName(kind, name);
    if (stored.isEmpty()) return noSuch(kind, name);
    const QString what = kindName(kind) + u' ' + Quoted(stored);
    if (removed.isEmpty()) return outcome(kind.remove(stored), QStringLiteral("Removed ") + what + u'.');
    QStringList members = kind.members(stored);
    for (const QString& member : removed) {
        const qsizetype at = indexOf(members, ConvertUsername(member, false, -1));
        if (at < 0)
            return VerbResult::refused(Quoted(member) + QStringLiteral(" is not in ") + what +
                                       QStringLiteral("; nothing changed."));
        members.removeAt(at);
    }
    return outcome(kind.save(stored, members),
                   QStringLiteral("Removed ") + removed.join(QStringLiteral(", ")) +
                       QStringLiteral(" from ") + what + u'.');
}

// A colour as the page's picker shows it: #RRGGBB.
QString htmlColor(qint32 color) {
    if (color < 0) return QStringLiteral("no colour");
    const quint32 c = quint32(color);
    return QStringLiteral("#%1%2%3")
        .arg(c & 0xFF, 2, 16, QChar(u'0'))
        .arg((c >> 8) & 0xFF, 2, 16, QChar(u'0'))
        .arg((c >> 16) & 0xFF, 2, 16, QChar(u'0'))
        .toUpper();
}

// "#RRGGBB" or "RRGGBB" to the stored form (red in the low byte), "none" to
// -1; nothing when the text is neither.
std::optional<qint32> storedColor(QString text) {
    if (text.compare(QStringLiteral("none"), Qt::CaseInsensitive) == 0) return -1;
    if (text.startsWith(u'#')) text.remove(0, 1);
    bool ok = false;
    const quint32 rgb = text.toUInt(&ok, 16);
    if (!ok || text.size() != 6) return std::nullopt;
    return qint32(((rgb >> 16) & 0xFF) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16));
}

// `group color NAME #RRGGBB|none` and `group prefix NAME TEXT`.
VerbResult groupLook(const QString& what, const QString& name, const QString& value) {
    const QString stored = storedName(kGroups, name);
    if (stored.isEmpty()) return noSuch(kGroups, name);
    qint32 color = GetGroupColor(stored);
    QString prefix = GetGroupPrefix(stored);
    if (what == u"color") {
        const std::optional<qint32> parsed = storedColor(value);
        if (!parsed)
            return VerbResult::refused(Quoted(value) + QStringLiteral(" is not a colour: give six "
                                                                      "hexadecimal digits, "
                                                                      "#RRGGBB, or none."));
        color = *parsed;
    } else {
        prefix = value;
    }
    return outcome(AliasGroupEditor::SaveGroup(stored, kGroups.members(stored), color, prefix),
                   QStringLiteral("Group ") + Quoted(stored) + QStringLiteral(": ") +
                       htmlColor(color) + QStringLiteral(", prefix ") + Quoted(prefix) + u'.');
}

VerbResult listEntries(const MemberList& kind, const QStringList& args) {
    if (args.size() == 2) {
        QStringList lines;
        for (const QString& name : kind.names()) {
            if (&kind == &kGroups)
                lines.append(name + u'\t' + htmlColor(GetGroupColor(name)) + u'\t' +
                             GetGroupPrefix(name));
            else
                lines.append(name);
        }
        return listing(lines, QStringLiteral("No ") + kindName(kind) +
                                  QStringLiteral(" yet; make one with: corvantide ") +
                                  kindName(kind) + QStringLiteral(" add NAME [MEMBER ...]"));
    }
    const QString stored = storedName(kind, args[2]);
    if (stored.isEmpty()) return noSuch(kind, args[2]);
    return listing(kind.members(stored), Quoted(stored) + QStringLiteral(" has no members."));
}

VerbResult members(const MemberList& kind, const QStringList& args) {
    const QString verb = args.value(1).toLower();
    const qsizetype n = args.size();
    if (verb == u"list" && (n == 2 || n == 3)) return listEntries(kind, args);
    if (verb == u"add" && n >= 3) return addMembers(kind, args[2], args.mid(3));
    if (verb == u"remove" && n >= 3) return removeMembers(kind, args[2], args.mid(3));
    if (&kind == &kGroups && (verb == u"color" || verb == u"prefix") && n == 4)
        return groupLook(verb, args[2], args[3]);
    return VerbResult::usage(
        kindName(kind) + QStringLiteral(" list [NAME]|add NAME [MEMBER ...]|remove NAME [MEMBER ...]") +
        (&kind == &kGroups ? QStringLiteral("|color NAME #RRGGBB|prefix NAME TEXT") : QString()));
}

} // namespace

namespace ListVerbs {

bool IsVerb(const QString& word) {
    for (const char* verb : {"filter", "block", "macro", "alias", "group"}) {
        if (word == QLatin1String(verb)) return true;
    }
    return false;
}

VerbResult Run(const QStringList& args) {
    const QString verb = args.value(0);
    if (verb == u"filter") return filter(args);
    if (verb == u"block") return block(args);
    if (verb == u"macro") return macro(args);
    if (verb == u"alias") return members(kAliases, args);
    return members(kGroups, args);
}

QString Help() {
    return QStringLiteral(
        "  filter list|add P|remove P      message filters: hide lines that match P ('*' any "
        "run)\n"
        "  block list|add N|remove N       blocked users\n"
        "  macro list [NAME]               the macros, or the lines of one\n"
        "  macro add NAME LINE             add a line to a macro (made when new)\n"
        "  macro remove NAME               remove a macro\n"
        "  alias list [NAME]               the aliases, or the members of one\n"
        "  alias add NAME [MEMBER ...]     make an alias, or add members to it\n"
        "  alias remove NAME [MEMBER ...]  remove an alias, or members from it\n"
        "  group list|add|remove ...       the same for groups\n"
        "  group color NAME #RRGGBB|none   the colour of a group's members in the user list\n"
        "  group prefix NAME TEXT          the prefix a group's members get\n");
}

} // namespace ListVerbs
