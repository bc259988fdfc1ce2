#pragma once

#include <QString>
#include <QStringList>

// A settings-folder file of entries, one a line: ID, " \u00A6 ", text. The
// broken bar is byte 0xA6 on disk, lines end in CR LF. A line counts only
// when it holds the separator and is longer than five characters; its text
// runs to a second separator, if any. IDs compare without regard to case and
// keep the spelling they were typed in.
//
// Nothing is held in memory: every operation reads the file, so hand edits
// hold at once, and every operation creates a missing file empty.
class TextEntryFile {
public:
    // False when the ID already has a text that is not blank, or when the
    // line did not reach the file: writeError() then says why.
    bool AddItem(const QString& ID, const QString& Text);
    // True when at least one line of the ID went. The file is rewritten from
    // the lines that count; lines that don't count are lost with it. False
    // with writeError() set when the file could not be rewritten.
    bool RemoveItem(const QString& ID);
    // The text of the first line of the ID, trimmed; empty if none.
    QString GetItem(const QString& ID);
    // Sends the IDs, in file order, ten to a reply, in the theme's
    // Information colour; or one reply saying there are none.
    void List(int Index, bool FromConsole);

    QString fileName() const;
    // Why the last AddItem or RemoveItem that gave false could not write;
    // empty when it gave false for a reason of the entries themselves.
    const QString& writeError() const { return m_writeError; }

    static const QString& Separator();

protected:
    // `name` is the file in the settings folder; `listWord` heads each list
    // reply ("Quotes"); `noneText` is the reply for an empty list.
    TextEntryFile(QString name, QString listWord, QString noneText);

    struct Entry {
        QString id;
        QString text;
    };
    // Whether the line counts, and what it holds.
    static bool parse(const QString& line, Entry& entry);
    // The lines of the file, created when missing.
    QStringList lines() const;

private:
    QString m_name;
    QString m_listWord;
    QString m_noneText;
    QString m_writeError;
};
