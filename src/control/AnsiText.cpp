#include "control/AnsiText.h"

namespace {

QByteArray ansiFormat(const CharFormat& f) {
    QByteArray code = "\x1b[0";
    if (f.bold) code += ";1";
    if (f.italic) code += ";3";
    if (f.underline) code += ";4";
    if (f.strike) code += ";9";
    const quint32 c = f.color & 0xFFFFFF;
    code += ";38;2;" + QByteArray::number(c & 0xFF) + ';' + QByteArray::number((c >> 8) & 0xFF) +
            ';' + QByteArray::number((c >> 16) & 0xFF) + 'm';
    return code;
}

// Control characters from a server or a user would steer the terminal
// (escape sequences in a chat line): they print as a question mark.
QString printable(const QString& text) {
    QString out = text;
    for (QChar& c : out) {
        const char16_t u = c.unicode();
        if ((u < 0x20 && u != u'\t') || (u >= 0x7F && u < 0xA0)) c = u'?';
    }
    return out;
}

} // namespace

QByteArray AnsiLine(const QByteArray& prefix, const std::vector<TextRun>& runs, bool colour) {
    QByteArray out = printable(QString::fromUtf8(prefix)).toUtf8();
    for (const TextRun& run : runs) {
        if (run.text.isEmpty()) continue;
        if (colour) out += ansiFormat(run.format);
        out += printable(run.text).toUtf8();
    }
    if (colour && !runs.empty()) out += "\x1b[0m";
    out += '\n';
    return out;
}
