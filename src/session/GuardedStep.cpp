#include "session/GuardedStep.h"

#include "presentation/ChatWriter.h"

#include <cstdio>

void ReportStepFailure(const QString& where, const QString& what) {
    const QString line = QStringLiteral("Error - ") + where + QStringLiteral(" - ") + what;
    try {
        WriteChat(0, {{255, line}});
    } catch (...) {
        // The console itself failed (out of memory): the terminal still hears of it.
        std::fprintf(stderr, "%s\n", line.toLocal8Bit().constData());
    }
}
