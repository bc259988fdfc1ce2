#pragma once

#include <QObject>
#include <QString>
#include <vector>

struct CharFormat {
    quint32 color = 0xFFFFFF; // 24-bit, red in the low byte
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;

    bool operator==(const CharFormat&) const = default;
};

struct TextRun {
    QString text;
    CharFormat format;
};

// The text of one chat view: runs of characters that share a format. Text is
// only ever appended at the end; restyling and removal work on a range and are
// cheap near the end, where the writer does all its work.
//
// The view also keeps the places where the game clients' colour escapes start
// ("\u00C1" and "\u00FF" followed by 'c' or 'C'), so that the writer finds
// them without rereading the text.
class ChatDocument : public QObject {
    Q_OBJECT
public:
    explicit ChatDocument(QObject* parent = nullptr);

    int length() const { return m_length; }
    bool isEmpty() const { return m_length == 0; }
    QString text() const;
    // The text from `from` to the end.
    QString textFrom(int from) const;
    // How many times `c` stands at `from` or after, without a copy of the text.
    qsizetype countFrom(int from, QChar c) const;
    const std::vector<TextRun>& runs() const { return m_runs; }
    // The whole lines of [from, to) as runs, cut at each line feed, without
    // the line end (a carriage return before the feed goes too). What follows
    // the last line feed is not a whole line: `end` says where it starts.
    std::vector<std::vector<TextRun>> linesBetween(int from, int to, int* end = nullptr) const;
    // The character at `pos`; a null character outside the text.
    QChar at(int pos) const;
    // The format of the character at `pos`; the default outside the text.
    CharFormat formatAt(int pos) const;

    // Kinds of colour escape: the StarCraft one, and the Diablo one spelled
    // with a lower-case or an upper-case 'c'.
    enum EscapeKind : char16_t {
        StarCraftEscape = 0xC1,
        DiabloEscape = u'c',
        DiabloEscapeUpper = u'C'
    };
    // Where the first escape of that kind at or after `from` starts; -1 if none.
    int nextEscape(int from, EscapeKind kind) const;
    bool hasEscapes() const { return !m_escapes.empty(); }

    void append(QStringView text, const CharFormat& format);
    void clear();
    // Replaces the format of [from, to) as `change` says.
    template <typename Change> void restyle(int from, int to, Change change);
    // Removes `count` characters at `from`.
    void remove(int from, int count);

    // Free text a form shows beside the view; the slot's profile name.
    QString Tag;

Q_SIGNALS:
    // Everything from `from` to the end may differ from what was shown.
    void changed(int from);
    // The text is about to go: the last chance to read what was written.
    void aboutToClear();
    void cleared();

private:
    // Splits the run that holds `pos` so that a run starts there; returns the
    // index of that run (the run count when `pos` is the end).
    size_t splitAt(int pos);
    // Index of the run holding `pos` and the position where that run starts.
    std::pair<size_t, int> locate(int pos) const;
    void mergeFrom(size_t index);
    // Records escapes that start in `text`, appended at `from`.
    void indexEscapes(QStringView text, int from);
    // After a removal at `pos`: whether a "\u00FF" just before it now starts
    // an escape.
    void reindexEscapeAt(int pos);

    struct Escape {
        int position;
        EscapeKind kind;
    };
    std::vector<TextRun> m_runs;
    std::vector<Escape> m_escapes; // by position
    int m_length = 0;
};

template <typename Change> void ChatDocument::restyle(int from, int to, Change change) {
    from = std::max(0, from);
    to = std::min(to, m_length);
    if (from >= to)
        return;
    const size_t first = splitAt(from);
    const size_t last = splitAt(to);
    for (size_t i = first; i < last; ++i)
        change(m_runs[i].format);
    mergeFrom(first == 0 ? 0 : first - 1);
    Q_EMIT changed(from);
}
