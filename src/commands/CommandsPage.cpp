#include "commands/CommandsPage.h"

#include "commands/CommandWrapper.h"
#include "config/FileWrites.h"
#include "config/Folders.h"
#include "social/ClanCommands.h"

#include <QDir>
#include <algorithm>

namespace {

struct Row {
    qint32 level;
    QString usage; // the words, with "..." behind those that take an argument
};

// Highest rank first, then by word; a word with and without an argument
// (DND, AWAY) gets both rows.
std::vector<Row> rows() {
    std::vector<Row> list;
    for (const CommandWrapper::Listing& command : CommandWrapper::Commands()) {
        QStringList forms = command.words;
        if (command.withArgument)
            for (QString& form : forms)
                form += QStringLiteral(" ...");
        const Row row{command.level, forms.join(QStringLiteral(", "))};
        const bool known = std::any_of(list.begin(), list.end(),
                                       [&](const Row& r) { return r.usage == row.usage; });
        if (!known) list.push_back(row);
    }
    std::stable_sort(list.begin(), list.end(), [](const Row& a, const Row& b) {
        return a.level != b.level ? a.level > b.level : a.usage < b.usage;
    });
    return list;
}

const QString kIntroduction = QStringLiteral(
    "Users of the channel give these behind the profile's trigger (\".\" unless set), in "
    "talk or in a whisper; typed in the input box behind a slash they run with full rights. "
    "A rank is the least a user needs in the userbase; 100 asks for exactly 100. Words in "
    "one row name the same command; \"...\" stands for the words that follow it.");

const QString kClanHeading = QStringLiteral(
    "WarCraft III clans, typed in the input box or on the terminal; the bot answers them "
    "itself and offers what the profile's own clan rank allows:");

// The introduction in lines a terminal shows whole.
QString wrapped(const QString& text, int width) {
    QString out;
    int column = 0;
    for (const QString& word : text.split(u' ')) {
        if (column > 0 && column + 1 + word.size() > width) {
            out += u'\n';
            column = 0;
        } else if (column > 0) {
            out += u' ';
            ++column;
        }
        out += word;
        column += int(word.size());
    }
    return out;
}

} // namespace

namespace CommandsPage {

QString Text() {
    QString text = QStringLiteral("Corvantide commands\n\n") + wrapped(kIntroduction, 78) +
                   QStringLiteral("\n\nRank  Command\n");
    for (const Row& row : rows())
        text += QStringLiteral("%1  %2\n").arg(row.level, 4).arg(row.usage);
    text += u'\n' + wrapped(kClanHeading, 78) + u'\n';
    for (const QString& line : ClanCommands::Usage())
        text += QStringLiteral("  ") + line + u'\n';
    return text;
}

QString Html() {
    QString html =
        QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Corvantide "
                       "commands</title></head>\n<body>\n<h1>Corvantide commands</h1>\n<p>");
    html += kIntroduction.toHtmlEscaped() +
            QStringLiteral("</p>\n<table>\n<tr><th>Rank</th><th>Command</th></tr>\n");
    for (const Row& row : rows())
        html += QStringLiteral("<tr><td>%1</td><td><code>%2</code></td></tr>\n")
                    .arg(row.level)
                    .arg(row.usage.toHtmlEscaped());
    html += QStringLiteral("</table>\n<p>") + kClanHeading.toHtmlEscaped() +
            QStringLiteral("</p>\n<ul>\n");
    for (const QString& line : ClanCommands::Usage())
        html +=
            QStringLiteral("<li><code>") + line.toHtmlEscaped() + QStringLiteral("</code></li>\n");
    return html + QStringLiteral("</ul>\n</body></html>\n");
}

QString WriteHtml(QString* cause) {
    const QString path = QDir(GetProgramFolder()).filePath(QStringLiteral("Commands.html"));
    return ReplaceFile(path, Html().toUtf8(), cause) ? path : QString();
}

} // namespace CommandsPage
