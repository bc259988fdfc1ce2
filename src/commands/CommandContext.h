#pragma once

#include <QString>
#include <array>

// One command being run: who asked, with what rank, and where the reply goes.
struct CommandContext {
    int Index = 0;
    // The speaker in the userbase's spelling; empty for the keyboard and /echo.
    QString Username;
    // The text behind the command word's blank; empty for plain commands.
    QString Rest;
    // The argument form ("dnd " with its blank), even with an empty Rest.
    bool Argument = false;
    qint32 Rank = 0;
    bool FromConsole = false;

    // A reply in the command colour: to the channel, or to the chat view for
    // the keyboard.
    void reply(const QString& text) const;
    // Text for the channel whatever the source, behind the slot's waiting lines.
    void queue(const QString& text) const;
    // The profile's command trigger, as replies quote it.
    QString trigger() const;
    // A change the command made did not reach the disk: a red line in the
    // profile's view says what and why ("Could not add Bob to the userbase:
    // the disk is full."), and a user in the channel hears that it failed,
    // without the cause. The command's success reply is not given.
    void notSaved(const QString& what, const QString& cause) const;
};

using CommandAction = void (*)(const CommandContext&);

// A row of a command table. A level of 100 asks for exactly 100; the others
// are minimums.
struct CommandEntry {
    qint32 level;
    std::array<const char*, 3> words; // unused places stay null
    CommandAction action;
};
