#pragma once

#include <QString>

// Facts about the machine and the program that the logon and the scripts
// report: the user's country and language, and the program's version.
struct MachineFacts {
    QString CountryAbbreviation; // three letters, e.g. "USA"
    QString CountryName;         // in the country's own language
    QString LanguageAbbreviation; // e.g. "ENU"
    QString LanguageName;         // in the language itself
    QString OperatingSystem;      // e.g. "Debian GNU/Linux 12 (bookworm)"
    QString UserName;             // the login name the program runs under
    QString ProcessorName;        // e.g. "AMD EPYC 7B13", from /proc/cpuinfo
    quint32 StartTick = 0;        // when the program started
    int VersionMajor = 0;
    int VersionMinor = 0;
    int VersionRevision = 0;

    // "major.minor", with " (Build n)" behind it where the build is wanted.
    QString versionText(bool withBuild = true) const;
};

// Read once at start; read by everything after.
MachineFacts& Machine();
void ReadMachineFacts();
