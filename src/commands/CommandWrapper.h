#pragma once

#include <QString>
#include <QStringList>
#include <vector>

struct CommandContext;
struct CommandEntry;

// Turns one line into one bot command: decides who may run what, runs it and
// sends the reply. The same for channel talk, whispers, the keyboard and
// /echo; what differs is the rank the line carries and where replies go.
// Keeps nothing between calls.
class CommandWrapper {
public:
    // `Message` is the line with the trigger or slash removed. An empty
    // `Username`, or `FromConsole`, means the keyboard's full rights. True when
    // the line was taken as a command, refusals included; false leaves the
    // line to the caller. An unranked speaker gets false and silence.
    bool SearchCommands(int Index, QString Username, const QString& Message, bool FromConsole);

    bool RunPlainCommand(int Index, const QString& Username, const QString& Message, qint32 Rank,
                         bool FromConsole);
    bool RunArgumentCommand(int Index, const QString& Username, const QString& Message, qint32 Rank,
                            bool FromConsole);

    // Every command as the tables hold it, for the list the user reads: the
    // least rank (100 asks for exactly 100), the words that name it, and
    // whether it takes words behind it.
    struct Listing {
        qint32 level;
        QStringList words;
        bool withArgument;
    };
    static std::vector<Listing> Commands();

private:
    static bool runFromTable(const CommandEntry* table, size_t rows, const QString& word,
                             const CommandContext& context);
};
