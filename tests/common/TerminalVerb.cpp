#include "common/TerminalVerb.h"

#include "common/SandboxProcess.h"

#include <QProcess>

QString ProgramBinary() {
    return QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide");
}

VerbAnswer RunVerb(const QString& home, const QStringList& words) {
    QProcess process;
    process.start(ProgramBinary(), QStringList{QStringLiteral("--home"), home} + words);
    VerbAnswer run;
    if (!waitFor([&] { return process.state() == QProcess::NotRunning; }, 20000)) return run;
    run.status = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}
