#include "commands/ChatProfanity.h"

#include "commands/ProfanityReader.h"
#include "config/FileStamp.h"
#include "config/SettingsWrapper.h"

#include <optional>

namespace {

// The table as of the file's last read; nothing while there is no file.
const ProfanityReader* currentTable() {
    static std::optional<ProfanityReader> table;
    static std::optional<FileStamp> read;
    const std::optional<FileStamp> now = FileStamp::ofInBurst(ProfanityReader::file());
    if (!now) {
        table.reset();
        read.reset();
        return nullptr;
    }
    if (!table || now != read) {
        table.emplace();
        read = now;
    }
    return &*table;
}

} // namespace

QString ShownWithProfanitySettings(const QString& Text) {
    const SettingsWrapper& settings = SettingsWrapper::instance();
    const bool censor = settings.RemoveProfanity();
    const bool uncensor = settings.ImproveProfanity();
    if (!(censor || uncensor) || Text.isEmpty()) return Text;
    const ProfanityReader* table = currentTable();
    if (!table) return Text;
    QString shown = Text;
    if (censor) table->EncodeProfanity(shown);
    if (uncensor) table->DecodeProfanity(shown);
    return shown;
}
