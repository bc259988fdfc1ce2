#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace sandbox {

// A chat line costs `base + perByte × bytes` milliseconds of credit, and credit comes back
// at one per millisecond. A line that arrives while the client still owes more than
// `allowance` disconnects it. The defaults stay below the waits of a client that paces its
// lines by 1500 + 38 × length (so it never owes anything when the next line comes), and let
// a burst of four short lines pass but not a fifth.
struct FloodBudget {
    bool enabled = true;
    int base = 1200;
    int perByte = 30;
    int allowance = 4000;
};

struct Account {
    QString name;
    QString password;
    QString email;
};

struct SandboxOptions {
    quint16 bncsPort = 6112;
    quint16 bnlsPort = 9367;
    QStringList hashFiles;                // three files; empty: generated ones
    bool bnlsFail = false;                // BNLS answers every version check with a failure
    std::optional<quint32> versionResult; // forced 0x51 result; none: check the answer
    bool currentVerbyte = false;          // 0x51 refuses (0x101) any but the current version byte
    QString keysFile;                     // more product keys, one a line
    bool exclusiveKeys = false;           // a key in use by another session is refused
    QString accountsFile;                 // accounts and channel bans kept across runs
    QList<Account> accounts;              // made at start, usable by both logon systems
    FloodBudget flood;
    int residents = 0;
    double residentRate = 0.5; // actions a second for the whole crowd
    QString residentChannel = QStringLiteral("Sandbox");
    int channelLimit = 0; // users a channel holds; 0 is no limit
    QString scriptFile;
    bool control = false; // commands and questions on standard input, answers on standard output
    bool trace = false;
    QString traceFile; // empty: standard error
    quint32 seed = 0;  // residents' choices; 0 picks one
    bool help = false;

    // Parses the program's arguments (without the program name). On failure the text says
    // what is wrong.
    static std::optional<SandboxOptions> parse(const QStringList& arguments, QString& error);
    static QString usage();
};

} // namespace sandbox
