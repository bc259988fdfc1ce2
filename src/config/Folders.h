#pragma once

#include <QString>

// Where the program keeps its files. The settings folder holds the settings
// store, the .ini files, Script.txt and Logs/; the program folder holds
// Plugins/, Themes/, Mail/ and Languages/. Both follow the XDG base
// directories, or live under one folder given with --home.

// Folder numbers of GetSpecialFolder, as the rest of the program knows them.
enum SpecialFolder {
    FolderDesktop = 0,
    FolderDocuments = 5,
    FolderStartup = 7,
    FolderAppData = 26,
    FolderLocalAppData = 28,
};

// With a folder given, that folder stands for the user's home for every file
// of the run: settings under DIR/.config, program files under DIR/.local/share,
// the autostart entry under DIR/.config/autostart. Empty restores the XDG
// folders. Call it before the first use of the settings store.
void SetHomeFolder(const QString& folder);
QString HomeFolder();

// The host's folder of that number, without a trailing slash; empty for a
// number that this host has no folder for.
QString GetSpecialFolder(int folder);

// The settings folder with a trailing slash, created (mode 0700) when missing,
// on every call: a folder removed during a run comes back.
QString GetSettingsPath();
// Where a file of the settings folder lies, without creating anything: for
// reads made per name on screen, where a missing folder only means a missing
// file.
QString SettingsFilePath(const QString& name);

// The program's own folder, without a trailing slash, created when missing.
QString GetProgramFolder();

// The file that makes the program start with the user's desktop session.
QString AutostartFile();

// How to start this program again with the same home: the program file and,
// when a home folder is set, its --home argument.
QStringList ProgramCommand();
