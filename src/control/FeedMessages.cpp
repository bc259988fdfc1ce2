#include "control/FeedMessages.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstring>

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
// Room for the whole line is made once and the bytes go straight into it: no
// character takes more than six bytes (the longest escape, \u00XX).
class LineWriter {
public:
    LineWriter(QByteArray& out, qsizetype most) : m_out(out) {
        const qsizetype start = out.size();
        out.resize(start + most);
        m_at = out.data() + start;
    }
    ~LineWriter() { m_out.truncate(m_at - m_out.constData()); }
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    void put(char c) { *m_at++ = c; }
    template <size_t N> void put(const char (&text)[N]) {
        std::memcpy(m_at, text, N - 1);
        m_at += N - 1;
    }
    void putHex(quint32 value, int digits) {
        static const char hex[] = "0123456789abcdef";
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
            put(hex[(value >> shift) & 0xF]);
    }
    // A JSON string: ASCII as it is, the rest as UTF-8.
    void putString(const QString& text) {
        put('"');
        const char16_t* from = reinterpret_cast<const char16_t*>(text.constData());
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (from[i] >= 0x80) {
                putUtf8(QStringView(text).mid(i));
                break;
            }
            putByte(uchar(from[i]));
        }
        put('"');
    }

private:
    void putByte(uchar c) {
        if (c >= 0x20 && c != '"' && c != '\\') {
            put(char(c));
        } else if (c < 0x20) {
            put("\\u00");
            putHex(c, 2);
        } else {
            put('\\');
            put(char(c));
        }
    }
    void putUtf8(QStringView text) {
        for (const char c : text.toUtf8())
            putByte(uchar(c));
    }

    QByteArray& m_out;
    char* m_at = nullptr;
};

// The most bytes a line can take.
qsizetype mostBytes(const FeedLine& line, const QString& profile) {
    qsizetype characters = profile.size();
    for (const TextRun& run : line.runs)
        characters += run.text.size();
    return 64 + 96 * qsizetype(line.runs.size()) + 6 * characters;
}

void putRun(LineWriter& out, const TextRun& run) {
    const quint32 c = run.format.color;
    const quint32 rgb = ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
    out.put('{');
    if (run.format.bold) out.put("\"bold\":true,");
    out.put("\"color\":\"#");
    out.putHex(rgb, 6);
    out.put("\",");
    if (run.format.italic) out.put("\"italic\":true,");
    if (run.format.strike) out.put("\"strike\":true,");
    out.put("\"text\":");
    out.putString(run.text);
    if (run.format.underline) out.put(",\"underline\":true");
    out.put('}');
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
    LineWriter writer(out, mostBytes(line, profile));
    writer.put("{\"event\":\"line\",\"profile\":");
    writer.putString(profile);
    writer.put(",\"runs\":[");
    for (size_t i = 0; i < line.runs.size(); ++i) {
        if (i > 0) writer.put(',');
        putRun(writer, line.runs[i]);
    }
    if (line.whisper)
        writer.put("],\"view\":\"whisper\"}\n");
    else
        writer.put("],\"view\":\"chat\"}\n");
}

QByteArray Line(const FeedLine& line, const QString& profile) {
    QByteArray out;
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
