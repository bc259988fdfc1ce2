#pragma once

#include <QString>
#include <QStringList>

// What `corvantide --home HOME WORDS...` printed and its exit status; a
// status of -1 when it did not end within 20 seconds.
struct VerbAnswer {
    int status = -1;
    QString out;
    QString err;
};

// Runs one verb as a person on another terminal would, while this test's
// event loop runs (a bot started by the test answers from its own loop, and
// its output keeps being read).
VerbAnswer RunVerb(const QString& home, const QStringList& words);
// The program under test.
QString ProgramBinary();
