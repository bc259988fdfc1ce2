#include "config/TextListFile.h"

#include "platform/Cp1252.h"

#include <QFile>

void TouchFile(const QString& path) {
    QFile file(path);
    file.open(QIODevice::Append);
}

QStringList ReadTextLines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray bytes = file.readAll();
    QString text;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        text = QString::fromUtf8(bytes.mid(3));
    else
        text = cp1252::decode(bytes);
    if (text.isEmpty()) return {};
    QStringList lines = text.split(u'\n');
    for (QString& line : lines) {
        if (line.endsWith(u'\r')) line.chop(1);
    }
    // The line end of the last line leaves nothing behind it.
    if (lines.last().isEmpty()) lines.removeLast();
    return lines;
}

bool WriteTextLines(const QString& path, const QStringList& lines, QString* cause,
                    FileAccess access) {
    QByteArray bytes;
    for (const QString& line : lines)
        bytes += cp1252::encode(line) + "\r\n";
    return ReplaceFile(path, bytes, cause, access);
}
