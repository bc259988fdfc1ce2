#include "commands/QuoteWrapper.h"

#include <QRandomGenerator>

QuoteWrapper::QuoteWrapper()
    : TextEntryFile(QStringLiteral("Quotes.ini"), QStringLiteral("Quotes"),
                    QStringLiteral("There are no quotes created yet.")) {}

QString QuoteWrapper::GetRandom() {
    QStringList texts;
    Entry entry;
    for (const QString& line : lines()) {
        if (parse(line, entry)) texts.append(entry.text);
    }
    if (texts.isEmpty()) return QStringLiteral("Unable to get a random quote.");
    return texts.at(qsizetype(QRandomGenerator::global()->bounded(quint32(texts.size()))));
}
