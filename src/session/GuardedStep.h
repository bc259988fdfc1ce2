#pragma once

#include <QString>

#include <exception>
#include <utility>

// Runs one step of a timer or of a socket event. Whatever the step throws ends
// that step alone: a red console line says where and what, and the next tick
// or event runs as usual, so one bad input never leaves a slot deaf. `where`
// gives the place's name, worked out only for a failure.
void ReportStepFailure(const QString& where, const QString& what);

template <typename Where, typename Step>
void RunGuarded(Where&& where, Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const std::exception& e) {
        ReportStepFailure(where(), QString::fromLocal8Bit(e.what()));
    } catch (...) {
        ReportStepFailure(where(), QStringLiteral("an unknown failure"));
    }
}
