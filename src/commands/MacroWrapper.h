#pragma once

#include "config/FileStamp.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// Named sequences of chat lines from Macros.ini in the settings folder, held
// in memory as of the last Reload; one instance serves the whole program. A
// file changed on disk since then (by hand, say) is read again on the next
// Grab; a file that is gone leaves the macros as they are.
//
// The file is written in blocks:
//
//     greet {
//     Hello everyone!
//     /me waves
//     }
//
// A line ending in " {" opens a macro named by the rest of the line, even
// inside another block, which it then ends; a line starting with "}" closes
// the block. Empty lines and lines outside a block are skipped; a block left
// open at the end of the file still counts.
class MacroWrapper {
public:
    static MacroWrapper& instance();

    // The lines of the first macro of that name, compared without regard to
    // case; empty lines and Found false when there is none.
    void Grab(const QString& Name, QStringList& Lines, bool& Found);
    // Reads the file again, creating it empty when missing.
    void Reload();

    // Every line of the file as it stands, for the control panel; the file
    // is created empty when missing.
    static QStringList FileLines();
    // The control panel's save: the lines replace the file whole, then the
    // macros are read from it. False, with the cause, when the file could not
    // be written.
    bool ReplaceFile(const QStringList& lines, QString* cause = nullptr);

    // The names of the macros, in the file's order.
    QStringList Names();
    // Adds a line at the end of the macro, or a new macro holding it, and
    // writes the file. False with the cause when the line cannot stand in a
    // block (empty, opening or closing one) or the file could not be written.
    bool AddLine(const QString& Name, const QString& Line, QString* cause);
    // Takes the macro's block out of the file. False when there is no such
    // macro (the cause then empty) or the file could not be written.
    bool RemoveMacro(const QString& Name, QString* cause);

    static QString fileName();

private:
    MacroWrapper();

    struct Macro {
        QString Name;
        QStringList Lines;
    };
    std::vector<Macro> m_macros;
    std::optional<FileStamp> m_loaded;
};
