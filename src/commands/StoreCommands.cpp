#include "commands/StoreCommands.h"

#include "commands/BotMail.h"
#include "commands/CommandContext.h"
#include "commands/DefinitionWrapper.h"
#include "commands/MacroWrapper.h"
#include "commands/QuoteWrapper.h"

#include <QStringList>

namespace storecommands {
namespace {

// The argument split at its first blank; false when there is none.
bool splitFirst(const QString& rest, QString& head, QString& tail) {
    const qsizetype blank = rest.indexOf(u' ');
    if (blank < 0) return false;
    head = rest.left(blank);
    tail = rest.mid(blank + 1);
    return true;
}

// How the quote and definition commands word their replies.
struct EntryWords {
    const char* noun;   // "quote"
    const char* usage;  // the add command with its fields
    const char* get;    // the command that shows an entry
    const char* remove; // the command that removes one
    const char* shown;  // what comes before an entry's text
    bool namesId;       // the ID and ": " come between
};

const EntryWords kQuoteWords = {
    "quote", "addquote <ID> <quote>", "getquote", "removequote", "Quote: ", false};
const EntryWords kDefinitionWords = {"definition", "define <ID> <definition>", "getdef",
                                     "removedef",  "Definition for ",          true};

void addEntry(const CommandContext& c, TextEntryFile& file, const EntryWords& w) {
    const QString noun = QLatin1String(w.noun);
    QString id, text;
    if (!splitFirst(c.Rest, id, text)) {
        c.reply(QStringLiteral("Insufficient fields specified for ") + noun +
                QStringLiteral(" format, do ") + c.trigger() + QLatin1String(w.usage) + u'.');
    } else if (file.AddItem(id, text)) {
        c.reply(QStringLiteral("Added new ") + noun + QStringLiteral(", type ") + c.trigger() +
                QLatin1String(w.get) + u' ' + id + QStringLiteral(" to view."));
    } else if (!file.writeError().isEmpty()) {
        c.notSaved(QStringLiteral("Could not add ") + noun + u' ' + id, file.writeError());
    } else {
        c.reply(QStringLiteral("Could not add ") + noun + QStringLiteral(", ") + noun +
                QStringLiteral(" with same ID already exists, type ") + c.trigger() +
                QLatin1String(w.remove) + QStringLiteral(" <ID> to delete."));
    }
}

void removeEntry(const CommandContext& c, TextEntryFile& file, const EntryWords& w) {
    const QString noun = QLatin1String(w.noun);
    if (file.RemoveItem(c.Rest))
        c.reply(QStringLiteral("Removed ") + noun + QStringLiteral(" with ID: ") + c.Rest + u'.');
    else if (!file.writeError().isEmpty())
        c.notSaved(QStringLiteral("Could not remove ") + noun + u' ' + c.Rest, file.writeError());
    else
        c.reply(QStringLiteral("Could not remove ") + noun +
                QStringLiteral(" with that ID, it doesn't exist."));
}

void getEntry(const CommandContext& c, TextEntryFile& file, const EntryWords& w) {
    const QString text = file.GetItem(c.Rest);
    if (text.isEmpty())
        c.reply(QStringLiteral("Could not find ") + QLatin1String(w.noun) +
                QStringLiteral(" with that ID."));
    else
        c.reply(QLatin1String(w.shown) + (w.namesId ? c.Rest + QStringLiteral(": ") : QString()) +
                text);
}

} // namespace

void RandomQuote(const CommandContext& c) {
    // Said aloud whoever asked, the keyboard included.
    c.queue(QuoteWrapper().GetRandom());
}

void ListQuotes(const CommandContext& c) {
    QuoteWrapper().List(c.Index, c.FromConsole);
}

void ListDefinitions(const CommandContext& c) {
    DefinitionWrapper().List(c.Index, c.FromConsole);
}

void Macro(const CommandContext& c) {
    QStringList lines;
    bool found = false;
    MacroWrapper::instance().Grab(c.Rest, lines, found);
    if (!found) {
        c.reply(QStringLiteral("Could not find macro with that name."));
        return;
    }
    // Macro lines are said or sent as they stand, never run as bot commands.
    for (const QString& line : lines)
        c.queue(line);
}

void AddQuote(const CommandContext& c) {
    QuoteWrapper quotes;
    addEntry(c, quotes, kQuoteWords);
}

void RemoveQuote(const CommandContext& c) {
    QuoteWrapper quotes;
    removeEntry(c, quotes, kQuoteWords);
}

void GetQuote(const CommandContext& c) {
    QuoteWrapper quotes;
    getEntry(c, quotes, kQuoteWords);
}

void AddDefinition(const CommandContext& c) {
    DefinitionWrapper definitions;
    addEntry(c, definitions, kDefinitionWords);
}

void RemoveDefinition(const CommandContext& c) {
    DefinitionWrapper definitions;
    removeEntry(c, definitions, kDefinitionWords);
}

void GetDefinition(const CommandContext& c) {
    DefinitionWrapper definitions;
    getEntry(c, definitions, kDefinitionWords);
}

void AddMail(const CommandContext& c) {
    QString recipient, text;
    if (!splitFirst(c.Rest, recipient, text)) {
        c.reply(QStringLiteral(
            "Cannot add new mail message, please include the user you are whispering followed "
            "by a space then the message you want to send to them."));
        return;
    }
    if (QString cause; !::AddMail(c.Index, recipient, text, &cause))
        c.notSaved(QStringLiteral("Could not add mail for ") + recipient, cause);
    else
        c.reply(QStringLiteral("Added new mail message for ") + recipient + u'.');
}

} // namespace storecommands
