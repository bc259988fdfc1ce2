#pragma once

#include <QByteArray>
#include <QString>

// Windows-1252 is the byte form of every text on the wire and in the store.
// The five bytes the code page leaves undefined map to the C1 control of the
// same number, so any byte string survives decode followed by encode.
namespace cp1252 {

QString decode(QByteArrayView bytes);
QByteArray encode(QStringView text);

// One character: the byte for a code point, '?' when the code page has none.
char encodeChar(char16_t unit);
char16_t decodeByte(unsigned char byte);

} // namespace cp1252
