#include "commands/MacroWrapper.h"

#include "config/Folders.h"
#include "config/TextListFile.h"

namespace {

const QString kOpening = QStringLiteral(" {");
const QString kFileName = QStringLiteral("Macros.ini");

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

bool MacroWrapper::ReplaceFile(const QStringList& lines) {
    const bool written = WriteTextLines(fileName(), lines);
    Reload();
    return written;
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
