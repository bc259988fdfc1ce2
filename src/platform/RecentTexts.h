#pragma once

#include <QByteArrayView>
#include <QString>

// Decodes the short texts of the wire and keeps the last few thousand, so
// that a name or statstring that arrives again shares the text decoded
// before. Many profiles in one channel hear the same joins: without sharing,
// each kept its own copy of every name and statstring in the channel.
class RecentTexts {
public:
    // The same text as cp1252::decode gives.
    static QString decode(QByteArrayView bytes);
};
