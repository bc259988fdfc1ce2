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
    QString id, text;
    if (!splitFirst(c.Rest, id, text)) {
        c.reply(QStringLiteral("Insufficient fields specified for quote format, do ") +
                c.trigger() + QStringLiteral("addquote <ID> <quote>."));
    } else if (!QuoteWrapper().AddItem(id, text)) {
        c.reply(QStringLiteral("Could not add quote, quote with same ID already exists, type ") +
                c.trigger() + QStringLiteral("removequote <ID> to delete."));
    } else {
        c.reply(QStringLiteral("Added new quote, type ") + c.trigger() +
                QStringLiteral("getquote ") + id + QStringLiteral(" to view."));
    }
}

void RemoveQuote(const CommandContext& c) {
    if (QuoteWrapper().RemoveItem(c.Rest))
        c.reply(QStringLiteral("Removed quote with ID: ") + c.Rest + u'.');
    else
        c.reply(QStringLiteral("Could not remove quote with that ID, it doesn't exist."));
}

void GetQuote(const CommandContext& c) {
    const QString text = QuoteWrapper().GetItem(c.Rest);
    if (text.isEmpty())
        c.reply(QStringLiteral("Could not find quote with that ID."));
    else
        c.reply(QStringLiteral("Quote: ") + text);
}

void AddDefinition(const CommandContext& c) {
    QString id, text;
    if (!splitFirst(c.Rest, id, text)) {
        c.reply(QStringLiteral("Insufficient fields specified for definition format, do ") +
                c.trigger() + QStringLiteral("define <ID> <definition>."));
    } else if (!DefinitionWrapper().AddItem(id, text)) {
        c.reply(QStringLiteral(
                    "Could not add definition, definition with same ID already exists, type ") +
                c.trigger() + QStringLiteral("removedef <ID> to delete."));
    } else {
        c.reply(QStringLiteral("Added new definition, type ") + c.trigger() +
                QStringLiteral("getdef ") + id + QStringLiteral(" to view."));
    }
}

void RemoveDefinition(const CommandContext& c) {
    if (DefinitionWrapper().RemoveItem(c.Rest))
        c.reply(QStringLiteral("Removed definition with ID: ") + c.Rest + u'.');
    else
        c.reply(QStringLiteral("Could not remove definition with that ID, it doesn't exist."));
}

void GetDefinition(const CommandContext& c) {
    const QString text = DefinitionWrapper().GetItem(c.Rest);
    if (text.isEmpty())
        c.reply(QStringLiteral("Could not find definition with that ID."));
    else
        c.reply(QStringLiteral("Definition for ") + c.Rest + QStringLiteral(": ") + text);
}

void AddMail(const CommandContext& c) {
    QString recipient, text;
    if (!splitFirst(c.Rest, recipient, text)) {
        c.reply(QStringLiteral(
            "Cannot add new mail message, please include the user you are whispering followed "
            "by a space then the message you want to send to them."));
        return;
    }
    ::AddMail(c.Index, recipient, text);
    c.reply(QStringLiteral("Added new mail message for ") + recipient + u'.');
}

} // namespace storecommands
