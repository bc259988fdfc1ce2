#pragma once

#include <QProcess>
#include <QStringList>
#include <functional>

// The local test server in a child process, on ports the system picks.
class SandboxProcess {
public:
    ~SandboxProcess();
    // Starts the sandbox with `options` and reads the two ports it prints.
    bool start(const QStringList& options = {});
    static QString binary();
    // Control lines for a sandbox started with --control: all are written at
    // once, so the sandbox carries them out together, and their answers come
    // back in order while the event loop runs. Fewer answers when time ran out.
    QStringList control(const QStringList& lines, int ms = 10000);
    QString control(const QString& line) { return control(QStringList{line}).value(0); }

    int bncsPort = 0;
    int bnlsPort = 0;
    QString bncsServer() const { return QStringLiteral("127.0.0.1:%1").arg(bncsPort); }
    QString bnlsServer() const { return QStringLiteral("127.0.0.1:%1").arg(bnlsPort); }
    // A StarCraft profile in a new slot, logging on here as `account` (which
    // the sandbox creates) with `channel` as its home; not yet connected.
    int loadProfile(const QString& account, const QString& channel) const;

private:
    QProcess m_process;
};

// A port of the loopback address that nothing listens on now.
int freePort();

// Runs the event loop until `done` holds or `ms` pass; true when it held.
bool waitFor(const std::function<bool()>& done, int ms = 10000);
