#pragma once

#include <QList>
#include <QString>

// The types and defaults of every value the program keeps in its settings
// tree, as data, so that a value typed on the terminal is stored the way the
// program reads it.
class SettingsCatalogue {
public:
    enum class Type { String, Dword, Boolean };

    struct Entry {
        QString valueName;
        Type type;
        QString defaultText;
        // The SettingsWrapper property that announces a change, when it
        // differs from the value name.
        QString property = {};
    };

    // The values of a profile's key, in the order the configuration form
    // shows them.
    static const QList<Entry>& ProfileValues();
    // The program-wide values of the Settings key.
    static const QList<Entry>& ProgramValues();

    // The entry for a value of the key (a path below the root, such as
    // "Settings", "Profiles\Main" or "Databases\Main\alice"), the value name
    // compared case-blind; null when the catalogue does not know it.
    static const Entry* Find(const QString& keyBelowRoot, const QString& valueName);
    // The defaults the wrappers read with: the catalogue is the one place
    // they are written down. Empty for a value it does not know.
    static QString ProgramDefault(const QString& valueName);
    static QString ProfileDefault(const QString& valueName);

    // A value of a profile's key, compared case-blind; null when none.
    static const Entry* FindProfileValue(const QString& valueName);
};
