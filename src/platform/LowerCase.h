#pragma once

#include <QString>

// The same as QString::toLower, but quick for the plain ASCII that account
// names are almost always made of; the chat path folds names several times
// an event.
inline QString LowerCase(const QString& text) {
    const char16_t* units = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype size = text.size();
    bool upper = false;
    for (qsizetype i = 0; i < size; ++i) {
        if (units[i] >= 0x80) return text.toLower();
        upper = upper || (units[i] >= u'A' && units[i] <= u'Z');
    }
    if (!upper) return text;
    QString lowered(text);
    char16_t* out = reinterpret_cast<char16_t*>(lowered.data());
    for (qsizetype i = 0; i < size; ++i) {
        if (out[i] >= u'A' && out[i] <= u'Z') out[i] = char16_t(out[i] + (u'a' - u'A'));
    }
    return lowered;
}
