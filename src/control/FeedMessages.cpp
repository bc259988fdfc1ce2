#include "control/FeedMessages.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

// Colours are kept with red in the low byte; on the wire as CSS writes them.
quint32 storedColor(const QString& css) {
    bool ok = false;
    const quint32 rgb = css.mid(1).toUInt(&ok, 16);
    if (!ok || !css.startsWith(u'#')) return 0xFFFFFF;
    return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF);
}

// A line is written by hand rather than as a tree of JSON values: every page
// and follower gets every line the bot shows, so this is on the chat path.
void appendEscaped(QByteArray& out, uchar c) {
    static const char digits[] = "0123456789abcdef";
    if (c < 0x20) {
        out += "\\u00";
        out += digits[c >> 4];
        out += digits[c & 0xF];
    } else {
        out += '\\';
        out += char(c);
    }
}

// Most of what a channel says is ASCII: it is copied straight into the room
// made for it, one byte a character, without a UTF-8 copy.
bool appendAscii(QByteArray& out, const QString& text) {
    const qsizetype start = out.size();
    const qsizetype size = text.size();
    const char16_t* from = reinterpret_cast<const char16_t*>(text.constData());
    out.resize(start + size);
    char* to = out.data() + start;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = from[i];
        if (c >= 0x80) {
            out.truncate(start);
            return false;
        }
        if (c == '"' || c == '\\' || c < 0x20) {
            // An escape takes more room than its character: the rest goes
            // one character at a time.
            out.truncate(start + i);
            for (qsizetype j = i; j < size; ++j) {
                if (from[j] >= 0x80) {
                    out.truncate(start);
                    return false;
                }
                if (from[j] != '"' && from[j] != '\\' && from[j] >= 0x20)
                    out += char(from[j]);
                else
                    appendEscaped(out, uchar(from[j]));
            }
            return true;
        }
        to[i] = char(c);
    }
    return true;
}

void appendString(QByteArray& out, const QString& text) {
    out += '"';
    if (appendAscii(out, text)) {
        out += '"';
        return;
    }
    const QByteArray utf8 = text.toUtf8();
    qsizetype plain = 0; // start of the stretch that needs no escape
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const uchar c = uchar(utf8[i]);
        if (c != '"' && c != '\\' && c >= 0x20) continue;
        out.append(utf8.constData() + plain, i - plain);
        appendEscaped(out, c);
        plain = i + 1;
    }
    out.append(utf8.constData() + plain, utf8.size() - plain);
    out += '"';
}

void appendRun(QByteArray& out, const TextRun& run) {
    static const char digits[] = "0123456789abcdef";
    const quint32 c = run.format.color;
    const quint32 rgb = ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
    out += '{';
    if (run.format.bold) out += "\"bold\":true,";
    out += "\"color\":\"#";
    for (int shift = 20; shift >= 0; shift -= 4)
        out += digits[(rgb >> shift) & 0xF];
    out += "\",";
    if (run.format.italic) out += "\"italic\":true,";
    if (run.format.strike) out += "\"strike\":true,";
    out += "\"text\":";
    appendString(out, run.text);
    if (run.format.underline) out += ",\"underline\":true";
    out += '}';
}

TextRun readRun(const QJsonObject& o) {
    CharFormat f;
    f.color = storedColor(o.value(QStringLiteral("color")).toString());
    f.bold = o.value(QStringLiteral("bold")).toBool();
    f.italic = o.value(QStringLiteral("italic")).toBool();
    f.underline = o.value(QStringLiteral("underline")).toBool();
    f.strike = o.value(QStringLiteral("strike")).toBool();
    return {o.value(QStringLiteral("text")).toString(), f};
}

} // namespace

namespace FeedMessages {

void AppendLine(QByteArray& out, const FeedLine& line, const QString& profile) {
    out += "{\"event\":\"line\",\"profile\":";
    appendString(out, profile);
    out += ",\"runs\":[";
    for (size_t i = 0; i < line.runs.size(); ++i) {
        if (i > 0) out += ',';
        appendRun(out, line.runs[i]);
    }
    out += line.whisper ? "],\"view\":\"whisper\"}\n" : "],\"view\":\"chat\"}\n";
}

QByteArray Line(const FeedLine& line, const QString& profile) {
    QByteArray out;
    out.reserve(96 + 64 * qsizetype(line.runs.size()));
    AppendLine(out, line, profile);
    return out;
}

QByteArray Skipped(qint64 lines) {
    return compact({{QStringLiteral("event"), QStringLiteral("skipped")},
                    {QStringLiteral("lines"), lines}});
}

QByteArray Notice(const QString& text) {
    return compact(
        {{QStringLiteral("event"), QStringLiteral("notice")}, {QStringLiteral("text"), text}});
}

Message Read(const QByteArray& json) {
    const QJsonObject o = QJsonDocument::fromJson(json).object();
    const QString event = o.value(QStringLiteral("event")).toString();
    Message m;
    if (event == u"line") {
        m.kind = Message::Line;
        m.profile = o.value(QStringLiteral("profile")).toString();
        m.whisper = o.value(QStringLiteral("view")).toString() == u"whisper";
        for (const QJsonValue& run : o.value(QStringLiteral("runs")).toArray())
            m.runs.push_back(readRun(run.toObject()));
    } else if (event == u"skipped") {
        m.kind = Message::Skipped;
        m.lines = o.value(QStringLiteral("lines")).toInteger();
    } else if (event == u"notice") {
        m.kind = Message::Notice;
        m.text = o.value(QStringLiteral("text")).toString();
    }
    return m;
}

} // namespace FeedMessages
