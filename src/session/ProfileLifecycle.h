#pragma once

#include <QString>
#include <QStringList>

// What a person does to a stored profile: make, copy, rename and remove it,
// with the profile manager's refusals. The window's forms and the terminal's
// `profile` verbs both come here, so a loaded slot sees the same change
// whichever made it.
struct ProfileOutcome {
    bool ok = false;
    // The refusal as the profile manager words it; empty when ok.
    QString warning;
    // Create only: the name was already a profile (the manager just selects
    // it; the terminal calls that taken).
    bool existed = false;
};

namespace ProfileLifecycle {

// "HKCU\Software\Corvantide4\Profiles\".
QString ProfilesKey();
// Every stored profile, as EnumKeys gives them (alphabetical, case-blind).
QStringList ListProfiles();
// The stored spelling of a profile compared case-blind, empty when none.
QString FindProfile(const QString& name);

// A control character (a tab, a line break, a terminal escape) in a name
// would break the lines that show it and could steer the terminal that
// prints it: no profile is named with one.
bool HasControlCharacter(const QString& name);
QString ControlCharacterRefusal();

ProfileOutcome CreateProfile(const QString& name);
ProfileOutcome CloneProfile(const QString& from, const QString& to);
// Every slot holding the profile (case-blind) takes the new name and keeps
// its connection.
ProfileOutcome RenameProfile(const QString& from, const QString& to);
// Unloads every slot holding the profile, highest first, after removing it
// from the store. The question before it is the caller's.
ProfileOutcome DeleteProfile(const QString& name);

} // namespace ProfileLifecycle
