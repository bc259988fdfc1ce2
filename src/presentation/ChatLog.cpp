#include "presentation/ChatLog.h"

#include "chat/BotElement.h"
#include "config/FileWrites.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "session/SlotTable.h"

#include <QFile>

namespace {

const QString& rule() {
    static const QString line(70, u'-');
    return line;
}

QString logsFolder() {
    return GetSettingsPath() + QStringLiteral("Logs/");
}

// Appends one save of a view; a file that can't be written ends this save,
// with a line that says why.
void saveLog(const QString& profile, const ChatDocument& view) {
    const QString name = LogFileName(profile, QDate::currentDate());
    QString text;
    if (!QFile::exists(name)) {
        text += rule() + QStringLiteral("\r\nCorvantide v4.0 Text Log for ") + profile +
                QStringLiteral("\r\n") + rule() + QStringLiteral("\r\n\r\n");
    }
    text += QStringLiteral("Log below saved at ") + FormatLongTime(QTime::currentTime()) +
            QStringLiteral(".\r\n") + rule() + QStringLiteral("\r\n") + view.text();
    // What was said in a channel is the user's alone to read.
    if (QString cause; !AppendToFile(name, text.toUtf8(), &cause, FileAccess::Private))
        WriteChat(0, Status::Error,
                  QStringLiteral("Could not save the log of ") + profile + QStringLiteral(" to ") +
                      name + QStringLiteral(": ") + cause + u'.');
}

} // namespace

QString LogFileName(const QString& profile, const QDate& day) {
    return logsFolder() + SafeFileName(profile) + QStringLiteral(" ~ ") +
           day.toString(QStringLiteral("dd-MM-yy")) + QStringLiteral(".txt");
}

void SaveLogFiles() {
    if (!SettingsWrapper::instance().Logging()) return;
    SlotTable& table = SlotTable::instance();
    for (int slot = 1; slot <= table.highestIndex(); ++slot) {
        MakePrivateFolder(logsFolder());
        const ChatDocument& view = table.chat(slot);
        const QString profile = table.bot(slot).Profile();
        if (view.isEmpty() || profile.isEmpty()) continue;
        saveLog(profile, view);
    }
}
