#pragma once

#include <QString>
#include <QStringList>

// Turns words of a text into others by the table of Profanity.ini, section
// "Main": each key is the word that encoding writes, its value the word as it
// stands in plain text. The table is read when the object is made.
class ProfanityReader {
public:
    ProfanityReader();

    // Reads the table again from the file, in the file's order of keys.
    void LoadProfanity();
    // Replaces every value of the table by its key, entry after entry.
    void EncodeProfanity(QString& Text) const;
    // Replaces every key by its value, in the same order.
    void DecodeProfanity(QString& Text) const;

    // Each entry is key, carriage return, value.
    const QStringList& entries() const { return m_entries; }

    static QString file();

private:
    QStringList m_entries;
};
