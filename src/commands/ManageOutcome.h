#pragma once

#include "config/RegistryWrapper.h"

#include <QString>

// The result of something a person asked of the userbases, aliases or groups,
// from the control panel or the terminal: done, or refused with the words to
// show.
struct ManageOutcome {
    bool ok = false;
    // The refusal in the control panel's words, or why the store refused;
    // empty when ok.
    QString warning;
    // Creating only: the entry was there already, and nothing changed.
    bool existed = false;

    static ManageOutcome done() { return {true, {}, false}; }
    static ManageOutcome refused(const QString& warning) { return {false, warning, false}; }
    // Says what the store refused and why ("the disk is full").
    static ManageOutcome storeRefused(const QString& what) {
        const QString cause = RegistryWrapper::instance().lastError();
        return refused(QStringLiteral("The settings store refused to ") + what +
                       (cause.isEmpty() ? QString() : QStringLiteral(": ") + cause) + u'.');
    }
};
