#include "control/FeedMessages.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

// Colours are kept with red in the low byte; on the wire as CSS writes them.
QString cssColor(quint32 color) {
    const quint32 rgb = ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
    return QStringLiteral("#%1").arg(rgb, 6, 16, QChar(u'0'));
}

quint32 storedColor(const QString& css) {
    bool ok = false;
    const quint32 rgb = css.mid(1).toUInt(&ok, 16);
    if (!ok || !css.startsWith(u'#')) return 0xFFFFFF;
    return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF);
}

QJsonObject runObject(const TextRun& run) {
    QJsonObject o{{QStringLiteral("text"), run.text},
                  {QStringLiteral("color"), cssColor(run.format.color)}};
    if (run.format.bold) o.insert(QStringLiteral("bold"), true);
    if (run.format.italic) o.insert(QStringLiteral("italic"), true);
    if (run.format.underline) o.insert(QStringLiteral("underline"), true);
    if (run.format.strike) o.insert(QStringLiteral("strike"), true);
    return o;
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

QByteArray Line(const FeedLine& line, const QString& profile) {
    QJsonArray runs;
    for (const TextRun& run : line.runs)
        runs.append(runObject(run));
    return compact({{QStringLiteral("event"), QStringLiteral("line")},
                    {QStringLiteral("profile"), profile},
                    {QStringLiteral("view"),
                     line.whisper ? QStringLiteral("whisper") : QStringLiteral("chat")},
                    {QStringLiteral("runs"), runs}});
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
