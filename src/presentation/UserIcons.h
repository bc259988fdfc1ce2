#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// The small icons of the lists, known by key. The window draws each key; the
// lists only carry the keys. Besides the fixed set there are numbered icons,
// "Key_Text", made on demand when IconDraw is on: the base icon with a number
// printed over it.

// Every key of the fixed set: products, flag marks, ping bars and the
// ladder, record and race icons of the statistics.
const QStringList& SmallIconKeys();

// The key itself if the list has an image of that key, else empty.
QString FindIcon(const QString& Key);

// A copy of the icon Key with Text printed on it in Colour (24-bit, red in
// the low byte), made once per key and text. Empty when IconDraw is off or
// there is no base image.
QString DrawIconNumber(const QString& Key, const QString& Text, quint32 Colour);

// What a numbered icon key stands for; nothing for other keys.
struct NumberedIcon {
    QString base;
    QString text; // as printed: at most six characters, right-aligned
    quint32 color = 0;
};
std::optional<NumberedIcon> NumberedIconOf(const QString& key);

// The icon of a channel user and the icon of their ping, for the user list of
// slot Index.
void GetUserIcons(int Index, const QString& Statstring, qint32 Flags, qint32 Ping, QString& Icon,
                  QString& PingIcon);
