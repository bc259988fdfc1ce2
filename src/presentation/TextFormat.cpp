#include "presentation/TextFormat.h"

#include "platform/Cp1252.h"

#include <QLocale>
#include <QStringDecoder>

namespace {

QString twoDigits(qint64 value) {
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

} // namespace

QString FormatUptime(qint64 ms) {
    const qint64 days = ms / 86400000;
    ms -= days * 86400000;
    const qint64 hours = ms / 3600000;
    ms -= hours * 3600000;
    const qint64 minutes = ms / 60000;
    ms -= minutes * 60000;
    const qint64 seconds = ms / 1000;
    return twoDigits(days) + u'|' + twoDigits(hours) + u':' + twoDigits(minutes) + u':' +
           twoDigits(seconds);
}

QString FormatSeconds(qint64& seconds) {
    if (seconds == 0)
        return QStringLiteral("Unavailable");
    const qint64 days = seconds / 86400;
    seconds -= days * 86400;
    const qint64 hours = seconds / 3600;
    seconds -= hours * 3600;
    const qint64 minutes = seconds / 60;
    seconds -= minutes * 60;
    return QStringLiteral("%1 days, %2 hours, %3 minutes.").arg(days).arg(hours).arg(minutes);
}

qint64 ParseFileTime(const QString& text) {
    const QStringList parts = text.split(u' ', Qt::SkipEmptyParts);
    const quint64 high = quint64(parts.value(0).toLongLong()) & 0xFFFFFFFFu;
    const quint64 low = parts.size() > 1 ? (quint64(parts[1].toLongLong()) & 0xFFFFFFFFu) : 0;
    return qint64((high << 32) | low);
}

QString FormatSystemTime(const QDateTime& t) {
    const QLocale locale = QLocale::system();
    const QDate d = t.date();
    const QTime tm = t.time();
    const int hour = tm.hour() > 12 ? tm.hour() - 12 : tm.hour();
    const QString half = tm.hour() > 12 ? QStringLiteral("PM") : QStringLiteral("AM");
    return locale.dayName(d.dayOfWeek()) + QStringLiteral(", ") + locale.monthName(d.month()) +
           u' ' + QString::number(d.day()) + QStringLiteral(", ") + QString::number(d.year()) +
           u' ' + QString::number(hour) + u':' + twoDigits(tm.minute()) + u':' +
           twoDigits(tm.second()) + u' ' + half;
}

QString DecodeUTF8(const QString& text) {
    if (text.isEmpty())
        return text;
    const QByteArray bytes = cp1252::encode(text);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = utf8.decode(bytes);
    if (utf8.hasError())
        return text;
    return decoded;
}

QString HexDump(const QByteArray& bytes) {
    QString out;
    for (qsizetype line = 0; line < bytes.size(); line += 16) {
        if (line > 0)
            out += QLatin1String("\r\n");
        QString hex;
        QString chars;
        for (qsizetype i = line; i < line + 16; ++i) {
            if (i < bytes.size()) {
                const quint8 b = quint8(bytes[i]);
                hex += QStringLiteral("%1 ").arg(b, 2, 16, QLatin1Char('0')).toUpper();
                chars += b >= 32 ? QChar(cp1252::decodeByte(b)) : QChar(u'.');
            } else {
                hex += QLatin1String("   ");
                chars += u'.';
            }
        }
        out += hex + QLatin1String("  ") + chars;
    }
    return out;
}

QString SafeFileName(const QString& text) {
    QString out = text;
    for (QChar& c : out) {
        if (QStringView(u"/\\?:\"*<>|").contains(c))
            c = u'_';
    }
    return out;
}
