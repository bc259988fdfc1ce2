#include "platform/Cp1252.h"

#include <array>

namespace cp1252 {
namespace {

// Code points of the bytes 0x80 to 0x9F; the rest of the page is Latin-1.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

char16_t decodeByte(unsigned char byte) {
    if (byte >= 0x80 && byte <= 0x9F)
        return kHighControls[byte - 0x80];
    return byte;
}

char encodeChar(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<char>(unit);
    for (size_t i = 0; i < kHighControls.size(); ++i) {
        if (kHighControls[i] == unit)
            return static_cast<char>(0x80 + i);
    }
    return '?';
}

QString decode(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (qsizetype i = 0; i < bytes.size(); ++i)
        out[i] = QChar(decodeByte(static_cast<unsigned char>(bytes[i])));
    return text;
}

QByteArray encode(QStringView text) {
    QByteArray bytes(text.size(), Qt::Uninitialized);
    char* out = bytes.data();
    for (qsizetype i = 0; i < text.size(); ++i)
        out[i] = encodeChar(text[i].unicode());
    return bytes;
}

} // namespace cp1252
