#include "presentation/ChatWriter.h"

#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/LocalClock.h"
#include "presentation/Theme.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"

#include <QLocale>
#include <QRegularExpression>

namespace {

ChatWriteBatch* g_batch = nullptr;

// The writer's settings: from the batch in force, else from the store.
bool locked() {
    return g_batch ? g_batch->Locked() : SettingsWrapper::instance().Locked();
}

bool timeStampOn() {
    return g_batch ? g_batch->TimeStamp() : SettingsWrapper::instance().TimeStamp();
}

qint32 colorDisp() {
    return g_batch ? g_batch->ColorDisp() : SettingsWrapper::instance().ColorDisp();
}

bool holdsEscape(const QString& text) {
    return text.contains(QChar(0xFF)) || text.contains(QChar(0xC1));
}

// The slot a view belongs to; -1 for a view outside the slot table.
int viewIndex(const ChatDocument& view) {
    SlotTable& table = SlotTable::instance();
    for (int i = 0; i <= table.highestIndex(); ++i) {
        if (&table.chat(i) == &view || &table.whisper(i) == &view) return i;
    }
    return -1;
}

// Writes the pairs at the end of the view, each with the four styles off.
// Returns whether any text held the lead character of an escape.
bool writeParts(ChatDocument& view, const ColorLine& line, bool endLine) {
    bool escapes = false;
    for (size_t i = 0; i < line.size(); ++i) {
        CharFormat format;
        // Colour 0 would be black on the dark view: it means white.
        format.color = line[i].color == 0 ? 0xFFFFFF : DisplayColor(line[i].color);
        QString text = line[i].text;
        if (endLine && i + 1 == line.size()) text += QLatin1String("\r\n");
        escapes = escapes || holdsEscape(text);
        text.remove(QChar(u'\0'));
        view.append(text, format);
    }
    return escapes;
}

// What the escapes' code characters do, after upper-casing.
struct Effect {
    enum Kind { None, Color, Bold, Italic, Underline, Strike } kind = None;
    quint32 color = 0;
};

Effect starCraftEffect(char16_t code) {
    const StarCraftColors& c = CurrentTheme().starcraft;
    switch (code) {
    case u'P':
    case u'W':
        return {Effect::Color, c.White};
    case u'Q':
        return {Effect::Color, c.Grey};
    case u'R':
        return {Effect::Color, c.Green};
    case u'S':
    case u'X':
    case u'Z':
        return {Effect::Color, c.Yellow};
    case u'T':
    case u'U':
    case u'V':
        return {Effect::Color, c.Torquiose};
    case u'Y':
    case u'[':
        return {Effect::Color, c.Red};
    default:
        return {};
    }
}

Effect diabloEffect(char16_t code) {
    const DiabloColors& c = CurrentTheme().diablo;
    switch (code) {
    case u'0':
        return {Effect::Color, c.White};
    case u'1':
        return {Effect::Color, c.Red};
    case u'2':
        return {Effect::Color, c.Blue};
    case u'3':
        return {Effect::Color, c.Green};
    case u'4':
    case u'7':
        return {Effect::Color, c.Gold};
    case u'5':
        return {Effect::Color, c.Grey};
    case u'6':
        return {Effect::Color, c.Black};
    case u'8':
        return {Effect::Color, c.Orange};
    case u'9':
        return {Effect::Color, c.Yellow};
    case u';':
        return {Effect::Color, c.Purple};
    case u':':
    case u'<':
        return {Effect::Color, c.DarkGreen};
    case u'B':
        return {Effect::Bold};
    case u'I':
        return {Effect::Italic};
    case u'U':
        return {Effect::Underline};
    case u'S':
        return {Effect::Strike};
    default:
        return {};
    }
}

// Colours or flips a style from `from` to the end of the view. A flip takes
// the opposite of what the first character of that stretch has.
void applyEffect(ChatDocument& view, int from, const Effect& effect) {
    const int to = view.length();
    const CharFormat at = view.formatAt(from);
    switch (effect.kind) {
    case Effect::None:
        return;
    case Effect::Color: {
        const quint32 color = DisplayColor(effect.color);
        view.restyle(from, to, [color](CharFormat& f) { f.color = color; });
        return;
    }
    case Effect::Bold:
        view.restyle(from, to, [on = !at.bold](CharFormat& f) { f.bold = on; });
        return;
    case Effect::Italic:
        view.restyle(from, to, [on = !at.italic](CharFormat& f) { f.italic = on; });
        return;
    case Effect::Underline:
        view.restyle(from, to, [on = !at.underline](CharFormat& f) { f.underline = on; });
        return;
    case Effect::Strike:
        view.restyle(from, to, [on = !at.strike](CharFormat& f) { f.strike = on; });
        return;
    }
}

// One pass: while an escape of the kind is left, searching from the start,
// apply its code (if asked) and remove it with its code character. An escape
// at the very end has no code and goes alone.
void runPass(ChatDocument& view, ChatDocument::EscapeKind kind, bool apply) {
    const int leadLength = kind == ChatDocument::StarCraftEscape ? 1 : 2;
    int from = 0;
    for (int at; (at = view.nextEscape(from, kind)) >= 0;) {
        const int codeAt = at + leadLength;
        const bool hasCode = codeAt < view.length();
        if (apply && hasCode) {
            const char16_t code = view.at(codeAt).toUpper().unicode();
            applyEffect(view, at,
                        kind == ChatDocument::StarCraftEscape ? starCraftEffect(code)
                                                              : diabloEffect(code));
        }
        view.remove(at, hasCode ? leadLength + 1 : view.length() - at);
        // Removing "\u00FF" + 'c' + code can join a "\u00FF" before it to a 'c'
        // behind it.
        from = std::max(0, at - 1);
    }
}

void runPasses(ChatDocument& view, bool apply) {
    if (!view.hasEscapes()) return;
    runPass(view, ChatDocument::StarCraftEscape, apply);
    runPass(view, ChatDocument::DiabloEscape, apply);
    runPass(view, ChatDocument::DiabloEscapeUpper, apply);
}

// What the setting ColorDisp asks for escapes that a write brought.
void finishEscapes(ChatDocument& view) {
    switch (colorDisp()) {
    case 0:
        ApplyColorCodes(view);
        break;
    case 1:
        StripColorCodes(view);
        break;
    default:
        break;
    }
}

// Empties a full view and writes the timestamp where one belongs. Returns
// whether the timestamp held the lead character of an escape.
bool startLine(ChatDocument& view, int index) {
    if (view.length() >= kChatViewLimit) view.clear();
    if (index == 0 || !timeStampOn()) return false;
    CharFormat format;
    format.color = DisplayColor(CurrentTheme().status.Time);
    const QString stamp = FormatTimestamp();
    view.append(stamp, format);
    return holdsEscape(stamp);
}

} // namespace

void WriteChat(int slot, const ColorLine& line) {
    if (locked()) return;
    SlotTable& table = SlotTable::instance();
    if (slot < 0 || slot > table.highestIndex()) return;
    ChatDocument& view = table.chat(slot);
    const bool stampEscapes = startLine(view, slot);
    const bool lineEscapes = writeParts(view, line, true);
    if (stampEscapes || lineEscapes) finishEscapes(view);
}

void WriteChatView(ChatDocument& view, const ColorLine& line) {
    if (locked()) return;
    if (writeParts(view, line, false)) finishEscapes(view);
}

void WriteTimestamp(ChatDocument& view) {
    if (locked()) return;
    if (startLine(view, viewIndex(view))) finishEscapes(view);
}

QString FormatLongTime(const QTime& time) {
    // The long format of the locale without its time zone, as clocks show it.
    static const QString format = [] {
        QString f = QLocale::system().timeFormat(QLocale::LongFormat);
        f.remove(QRegularExpression(QStringLiteral("\\s*\\bt+\\b")));
        return f.trimmed();
    }();
    return QLocale::system().toString(time, format);
}

QString FormatTimestamp() {
    // Every line of a second gets the same stamp: it is made once a second.
    struct Made {
        QString pattern;
        QTime at;
        QString text;
    };
    static Made made;
    const QString& pattern = CurrentTheme().time;
    const QTime now = LocalClock::now();
    const QTime second(now.hour(), now.minute(), now.second());
    if (second == made.at && pattern == made.pattern) return made.text;
    QString text = pattern;
    // The template may start with a colour mark like the event templates; the
    // timestamp has one colour of its own, so the mark is dropped.
    if (text.startsWith(u'#')) text.remove(0, 2);
    const auto two = [](int value) { return QStringLiteral("%1").arg(value, 2, 10, QChar(u'0')); };
    text.replace(QLatin1String("%hh"), two(now.hour()));
    text.replace(QLatin1String("%nn"), two(now.minute()));
    text.replace(QLatin1String("%ss"), two(now.second()));
    if (text.contains(QLatin1String("%time")))
        text.replace(QLatin1String("%time"), FormatLongTime(now));
    text.replace(QLatin1String("%sp"), QLatin1String(" "));
    made = {pattern, second, text};
    return text;
}

void ApplyColorCodes(ChatDocument& view) {
    runPasses(view, true);
}

void StripColorCodes(ChatDocument& view) {
    runPasses(view, false);
}

quint32 StatusColor(Status status) {
    const StatusColors& c = CurrentTheme().status;
    switch (status) {
    case Status::Success:
        return c.Success;
    case Status::Information:
        return c.Information;
    case Status::Error:
        return c.Error;
    case Status::Failure:
        return c.Failure;
    case Status::Warning:
        return c.Warning;
    case Status::Neutral:
        return c.Neutral;
    }
    return c.Information;
}

void WriteChat(int slot, Status status, const QString& text) {
    WriteChat(slot, {{StatusColor(status), text}});
}

ChatWriteBatch::ChatWriteBatch() : m_outer(g_batch) {
    g_batch = this;
}

ChatWriteBatch::~ChatWriteBatch() {
    g_batch = m_outer;
}

bool ChatWriteBatch::Locked() {
    if (!m_locked) m_locked = SettingsWrapper::instance().Locked();
    return *m_locked;
}

bool ChatWriteBatch::TimeStamp() {
    if (!m_timeStamp) m_timeStamp = SettingsWrapper::instance().TimeStamp();
    return *m_timeStamp;
}

qint32 ChatWriteBatch::ColorDisp() {
    if (!m_colorDisp) m_colorDisp = SettingsWrapper::instance().ColorDisp();
    return *m_colorDisp;
}

void ReportError(const QString& procedure, const QString& description, const QString& vars) {
    const MachineFacts& m = Machine();
    const QString version = QString::number(m.VersionMajor) + u'.' +
                            QString::number(m.VersionMinor) + u'.' +
                            QString::number(m.VersionRevision);
    WriteChat(SlotTable::instance().CurrentIndex(),
              {{0x0000FF, version + QStringLiteral(" | ") + procedure +
                              QStringLiteral(" : Error - ") + description +
                              QStringLiteral(" - ( Vars: ") + vars + QStringLiteral(" )")}});
}
