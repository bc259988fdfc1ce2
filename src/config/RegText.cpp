#include "config/RegText.h"

#include "platform/Cp1252.h"

#include <QList>
#include <algorithm>

namespace regtext {
namespace {

bool isHexDigit(QChar c) {
    const char16_t u = c.unicode();
    return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'F') || (u >= 'a' && u <= 'f');
}

QStringView trimmed(QStringView text) {
    while (!text.isEmpty() && text.front() == u' ')
        text = text.mid(1);
    while (!text.isEmpty() && text.back() == u' ')
        text.chop(1);
    return text;
}

bool startsWith(QStringView text, const char* word) {
    return text.startsWith(QLatin1StringView(word), Qt::CaseInsensitive);
}

// A text in double quotes from the opening quote at `at`; `at` ends behind
// the closing one. Only \\ and \" are escapes: a backslash before anything
// else stands for itself, as regedit reads it.
bool readQuoted(QStringView line, qsizetype& at, QString& text) {
    text.clear();
    for (qsizetype i = at + 1; i < line.size(); ++i) {
        const QChar c = line[i];
        if (c == u'\\' && i + 1 < line.size() && (line[i + 1] == u'\\' || line[i + 1] == u'"')) {
            text += line[++i];
        } else if (c == u'"') {
            at = i + 1;
            return true;
        } else {
            text += c;
        }
    }
    return false;
}

// "41,42" or "41, 42"; empty data is a value of no bytes.
bool readHexBytes(QStringView list, QByteArray& bytes) {
    bytes.clear();
    list = trimmed(list);
    if (list.isEmpty()) return true;
    for (QStringView item : list.split(u',')) {
        item = trimmed(item);
        if (item.isEmpty() || item.size() > 2 || !isHexDigit(item[0]) ||
            (item.size() == 2 && !isHexDigit(item[1])))
            return false;
        bytes.append(char(item.toUInt(nullptr, 16)));
    }
    return true;
}

// The digits at the start of a dword's data, FFFFFFFF being -1; digits past
// the eighth carry out of 32 bits. `exact` says the data was one to eight
// digits and nothing else.
qint32 leadingHexNumber(QStringView hex, bool& exact) {
    quint32 value = 0;
    qsizetype digits = 0;
    while (digits < hex.size() && isHexDigit(hex[digits])) {
        const char16_t c = hex[digits].unicode();
        value = value * 16 + quint32(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
        ++digits;
    }
    exact = digits > 0 && digits <= 8 && digits == hex.size();
    return static_cast<qint32>(value);
}

QString hexList(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size() * 3);
    for (char byte : bytes) {
        if (!text.isEmpty()) text += u',';
        text += QStringLiteral("%1").arg(quint8(byte), 2, 16, QLatin1Char('0')).toUpper();
    }
    return text;
}

bool holdsControl(const QByteArray& bytes) {
    return std::any_of(bytes.begin(), bytes.end(), [](char c) { return quint8(c) < 0x20; });
}

bool readTyped(QStringView data, Value& value, QString& error) {
    const qsizetype close = data.indexOf(u')');
    bool number = false;
    const int type = close > 4 ? data.mid(4, close - 4).toInt(&number, 16) : 0;
    if (!number || close + 1 >= data.size() || data[close + 1] != u':' ||
        !readHexBytes(data.mid(close + 2), value.data)) {
        error = visible(data) + QStringLiteral(" is not hexadecimal");
        return false;
    }
    value.type = type;
    if (type == kString) {
        // regedit ends a text with its NUL; the value is what stands before it.
        if (value.data.endsWith('\0')) value.data.chop(1);
    } else if (type == kDword) {
        if (value.data.size() != 4) {
            error = visible(data) + QStringLiteral(" is not four bytes");
            return false;
        }
        value.dword =
            qint32(quint32(quint8(value.data[0])) | quint32(quint8(value.data[1])) << 8 |
                   quint32(quint8(value.data[2])) << 16 | quint32(quint8(value.data[3])) << 24);
    } else if (type != kBinary) {
        error = QStringLiteral("hex(%1) is a type the settings do not keep").arg(type, 0, 16);
        return false;
    }
    return true;
}

} // namespace

QString quoted(QStringView text) {
    QString out;
    out.reserve(text.size() + 2);
    out += u'"';
    for (QChar c : text) {
        if (c == u'\\' || c == u'"') out += u'\\';
        out += c;
    }
    out += u'"';
    return out;
}

QString valueLine(const QString& name, int type, const QByteArray& data, qint32 dword) {
    QString line = name.isEmpty() ? QStringLiteral("@") : quoted(name);
    line += u'=';
    if (type == kDword)
        return line + QStringLiteral("dword:") +
               QStringLiteral("%1").arg(quint32(dword), 8, 16, QLatin1Char('0')).toUpper();
    if (type == kBinary) return line + QStringLiteral("hex:") + hexList(data);
    if (holdsControl(data)) return line + QStringLiteral("hex(1):") + hexList(data + '\0');
    return line + quoted(cp1252::decode(data));
}

qsizetype dataStart(QStringView line, QString& name, QString& error) {
    qsizetype at = 0;
    if (line.startsWith(u'@')) {
        name.clear();
        at = 1;
    } else if (line.startsWith(u'"')) {
        if (!readQuoted(line, at, name)) {
            error = QStringLiteral("the value name's closing quote is missing");
            return -1;
        }
    } else {
        error = QStringLiteral("the value name is not in double quotes");
        return -1;
    }
    while (at < line.size() && line[at] == u' ')
        ++at;
    if (at >= line.size() || line[at] != u'=') {
        error = QStringLiteral("no = follows the value name");
        return -1;
    }
    ++at;
    while (at < line.size() && line[at] == u' ')
        ++at;
    return at;
}

bool continues(QStringView data) {
    return startsWith(data, "hex") && trimmed(data).endsWith(u'\\');
}

bool readData(QStringView data, Value& value, QString& error) {
    data = trimmed(data);
    if (data.startsWith(u'"')) {
        qsizetype at = 0;
        QString text;
        if (!readQuoted(data, at, text)) {
            error = QStringLiteral("the text's closing quote is missing");
            return false;
        }
        if (!trimmed(data.mid(at)).isEmpty()) {
            error =
                QStringLiteral("more follows the text's closing quote: ") + visible(data.mid(at));
            return false;
        }
        value.type = kString;
        value.data = cp1252::encode(text);
        return true;
    }
    if (data == u"-") {
        value.remove = true;
        return true;
    }
    if (startsWith(data, "dword:")) {
        bool exact = false;
        value.type = kDword;
        value.dword = leadingHexNumber(data.mid(6), exact);
        if (!exact)
            value.warning =
                visible(data) + QStringLiteral(" is not up to eight hexadecimal digits; stored %1")
                                    .arg(value.dword);
        return true;
    }
    if (startsWith(data, "hex:")) {
        value.type = kBinary;
        if (readHexBytes(data.mid(4), value.data)) return true;
        error = visible(data) + QStringLiteral(" is not hexadecimal");
        return false;
    }
    if (startsWith(data, "hex(")) return readTyped(data, value, error);
    error = QStringLiteral("the data is no quoted text, dword:, hex: or -");
    return false;
}

QString visible(QStringView text) {
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            out += QStringLiteral("\\x") +
                   QStringLiteral("%1").arg(c.unicode(), 2, 16, QLatin1Char('0')).toUpper();
        else
            out += c;
    }
    return out;
}

} // namespace regtext
