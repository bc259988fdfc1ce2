#pragma once

#include <QString>
#include <QStringList>
#include <vector>

// Named sequences of chat lines from Macros.ini in the settings folder, held
// in memory as of the last Reload; one instance serves the whole program.
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
    void Grab(const QString& Name, QStringList& Lines, bool& Found) const;
    // Reads the file again, creating it empty when missing.
    void Reload();

    static QString fileName();

private:
    MacroWrapper();

    struct Macro {
        QString Name;
        QStringList Lines;
    };
    std::vector<Macro> m_macros;
};
