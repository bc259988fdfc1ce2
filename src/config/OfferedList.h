#pragma once

#include <QString>
#include <QStringList>

// The lists of values the profile form offers beside its boxes. A list is a
// key of the store whose subkeys are the entries, each named by its text, so
// adding an entry creates a key and removing it deletes one.
class OfferedList {
public:
    // The list manager's kinds come first, in its own numbering.
    enum Kind {
        Accounts,
        Passwords,
        Servers1,
        Servers2,
        Channels,
        Cdkeys1,
        Cdkeys2,
        IdleMessages,
        Databases,
    };

    // The list's key, e.g. "HKCU\Software\Corvantide4\Accounts".
    static QString key(Kind kind);
    // The entries, as the store orders them. A list that doesn't exist yet
    // is created and reads as empty.
    static QStringList entries(Kind kind);
    // A text with a backslash makes a nested key whose first part is the
    // entry. False when the text is empty or the store refused.
    static bool add(Kind kind, const QString& text);
    // False when the entry is missing or has entries below it.
    static bool remove(Kind kind, const QString& text);
};
