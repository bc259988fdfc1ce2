#pragma once

// The program as a person runs it on a terminal or under a service manager:
// a home filled by importing REGEDIT4 keys, and a headless bot whose output
// the test reads as it comes.
#include "common/SandboxProcess.h"
#include "common/TerminalVerb.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Writes `text` to `path`, making its folder first.
inline void writeFile(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(text);
}

// The REGEDIT4 key of a StarCraft profile on `sandbox`.
inline QString profileKey(const QString& name, const QString& account, const QString& channel,
                          const SandboxProcess& sandbox, bool loadAtStartup = true) {
    return QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\%1]\r\n"
                          "\"Account\"=\"%2\"\r\n\"Password\"=\"pass\"\r\n\"Product\"=\"STAR\"\r\n"
                          "\"Verbyte\"=\"d3\"\r\n\"Cdkey1\"=\"7178075237576\"\r\n"
                          "\"Channel\"=\"%3\"\r\n\"Server\"=\"%4\"\r\n\"ServerBNLS\"=\"%5\"\r\n"
                          "\"Load at Startup\"=dword:0000000%6\r\n\r\n")
        .arg(name, account, channel, sandbox.bncsServer(), sandbox.bnlsServer())
        .arg(int(loadAtStartup));
}

// `corvantide --home HOME --import-reg FILE` with a file of these keys.
inline VerbAnswer importKeys(const QString& home, const QString& keys) {
    const QString reg = home + QStringLiteral("/import.reg");
    writeFile(reg, (QStringLiteral("REGEDIT4\r\n\r\n") + keys).toLatin1());
    return RunVerb(home, {QStringLiteral("--import-reg"), reg});
}

// Another terminal on a home of the test's own, from which verbs reach the
// bot that runs there.
class Terminal {
protected:
    VerbAnswer verb(const QStringList& words) const { return RunVerb(home.path(), words); }
    // The words of `line`, split at its spaces.
    VerbAnswer verb(const char* line) const { return verb(QString::fromUtf8(line).split(u' ')); }
    // A verb that must succeed.
    void setUp(const QStringList& words) const {
        const VerbAnswer run = verb(words);
        ASSERT_EQ(run.status, 0) << words.join(u' ').toStdString() << ": " << run.err.toStdString();
    }
    void setUp(const char* line) const { setUp(QString::fromUtf8(line).split(u' ')); }

    QTemporaryDir home;
};

// The program running beside the test, everything it printed kept in `out`.
class RunningProgram : public QProcess {
public:
    ~RunningProgram() override { stop(); }
    // `corvantide --headless --home HOME OPTIONS...`
    bool headless(const QString& home, const QStringList& options = {}) {
        m_endsWithInput = !options.contains(QStringLiteral("--no-input"));
        return run(QStringList{QStringLiteral("--headless"), QStringLiteral("--home"), home} +
                   options);
    }
    // `corvantide --home HOME WORDS...` for a verb that goes on, such as `tail`.
    bool verb(const QString& home, const QStringList& words) {
        m_endsWithInput = false;
        return run(QStringList{QStringLiteral("--home"), home} + words);
    }
    // Until `text` has come out on standard output.
    bool says(const QString& text, int ms = 20000) {
        return waitFor([&] { return read().contains(text); }, ms);
    }
    // All it printed so far.
    const QString& read() {
        out += QString::fromUtf8(readAllStandardOutput());
        return out;
    }
    // Ends its input as a terminal does (one that reads none is asked to
    // end) and gives its exit status; -1 when it crashed or had to be killed.
    int stop() {
        if (state() == NotRunning) return exitStatus() == NormalExit ? exitCode() : -1;
        if (m_endsWithInput)
            closeWriteChannel();
        else
            terminate();
        if (waitForFinished(20000)) {
            read();
            return exitStatus() == NormalExit ? exitCode() : -1;
        }
        kill();
        waitForFinished(5000);
        return -1;
    }

    QString out;

private:
    bool run(const QStringList& arguments) {
        start(ProgramBinary(), arguments);
        return waitForStarted();
    }
    bool m_endsWithInput = true;
};
