#include "commands/MacroWrapper.h"

#include "config/Folders.h"
#include "config/TextListFile.h"

namespace {

const QString kOpening = QStringLiteral(" {");
const QString kFileName = QStringLiteral("Macros.ini");

// Where a block stands among the file's lines: its opening line, and the
// line that ends it (its closing line, the next opening, or the end).
struct Block {
    qsizetype open = -1;
    qsizetype end = -1;
    bool closed = false;
};

Block findBlock(const QStringList& lines, const QString& name) {
    Block block;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString& line = lines[i];
        if (block.open < 0) {
            if (line.endsWith(kOpening) &&
                line.chopped(kOpening.size()).compare(name, Qt::CaseInsensitive) == 0)
                block.open = i;
        } else if (line.endsWith(kOpening) || line.startsWith(u'}')) {
            block.end = i;
            block.closed = line.startsWith(u'}');
            return block;
        }
    }
    if (block.open >= 0) block.end = lines.size();
    return block;
}

} // namespace

MacroWrapper& MacroWrapper::instance() {
    static MacroWrapper macros;
    return macros;
}

MacroWrapper::MacroWrapper() {
    Reload();
}

QString MacroWrapper::fileName() {
    return GetSettingsPath() + kFileName;
}

void MacroWrapper::Reload() {
    m_macros.clear();
    const QString path = fileName();
    TouchFile(path);
    m_loaded = FileStamp::of(path);
    bool inBlock = false;
    for (const QString& line : ReadTextLines(path)) {
        if (line.isEmpty()) continue;
        if (line.endsWith(kOpening)) {
            m_macros.push_back({line.chopped(kOpening.size()), {}});
            inBlock = true;
        } else if (line.startsWith(u'}')) {
            inBlock = false;
        } else if (inBlock) {
            m_macros.back().Lines.append(line);
        }
    }
}

QStringList MacroWrapper::FileLines() {
    TouchFile(fileName());
    return ReadTextLines(fileName());
}

bool MacroWrapper::ReplaceFile(const QStringList& lines, QString* cause) {
    const bool written = WriteTextLines(fileName(), lines, cause);
    Reload();
    return written;
}

QStringList MacroWrapper::Names() {
    const std::optional<FileStamp> now = FileStamp::of(fileName());
    if (now && now != m_loaded) Reload();
    QStringList names;
    for (const Macro& macro : m_macros)
        names.append(macro.Name);
    return names;
}

bool MacroWrapper::AddLine(const QString& Name, const QString& Line, QString* cause) {
    if (Name.isEmpty() || Line.isEmpty() || Line.endsWith(kOpening) || Line.startsWith(u'}') ||
        Name.endsWith(kOpening)) {
        *cause = QStringLiteral("A macro's name and lines cannot be empty, and a line cannot "
                                "start with \"}\" or end with \" {\"");
        return false;
    }
    QStringList lines = FileLines();
    const Block block = findBlock(lines, Name);
    if (block.open < 0) {
        lines << Name + kOpening << Line << QStringLiteral("}");
    } else {
        lines.insert(block.end, Line);
        if (!block.closed) lines.insert(block.end + 1, QStringLiteral("}"));
    }
    return ReplaceFile(lines, cause);
}

bool MacroWrapper::RemoveMacro(const QString& Name, QString* cause) {
    QStringList lines = FileLines();
    const Block block = findBlock(lines, Name);
    if (block.open < 0) {
        cause->clear();
        return false;
    }
    lines.remove(block.open, block.end - block.open + (block.closed ? 1 : 0));
    return ReplaceFile(lines, cause);
}

void MacroWrapper::Grab(const QString& Name, QStringList& Lines, bool& Found) {
    const std::optional<FileStamp> now = FileStamp::of(SettingsFilePath(kFileName));
    if (now && now != m_loaded) Reload();
    const QString wanted = Name.toLower();
    for (const Macro& macro : m_macros) {
        if (macro.Name.toLower() == wanted) {
            Lines = macro.Lines;
            Found = true;
            return;
        }
    }
    Lines.clear();
    Found = false;
}
