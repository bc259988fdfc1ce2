#pragma once

#include <QString>

// What a terminal verb prints and the process's exit status: the line for
// standard output when it worked, the refusal for standard error when not.
struct VerbResult {
    int status = 0;
    QString out;
    QString err;

    static VerbResult done(const QString& line) { return {0, line + u'\n', {}}; }
    static VerbResult refused(const QString& line) { return {1, {}, line + u'\n'}; }
    // A verb used the wrong way: the usage line, status 2 as for bad options.
    static VerbResult usage(const QString& line) {
        return {2, {}, QStringLiteral("usage: corvantide ") + line + u'\n'};
    }
};

// A name as the verbs' lines show it: 'Main'.
inline QString Quoted(const QString& text) {
    return u'\'' + text + u'\'';
}
