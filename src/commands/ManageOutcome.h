#pragma once

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
    static ManageOutcome storeRefused(const QString& what) {
        return refused(QStringLiteral("The settings store refused to ") + what + u'.');
    }
};
