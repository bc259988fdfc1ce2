#include "presentation/ChatLog.h"

#include "chat/BotElement.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "session/SlotTable.h"

#include <QDir>
#include <QFile>

namespace {

const QString& rule() {
    static const QString line(70, u'-');
    return line;
}

QString logsFolder() {
    return GetSettingsPath() + QStringLiteral("Logs/");
}

// Appends one save of a view; a file that can't be opened ends this save.
void saveLog(const QString& profile, const ChatDocument& view) {
    const QString name = LogFileName(profile, QDate::currentDate());
    QString text;
    if (!QFile::exists(name)) {
        text += rule() + QStringLiteral("\r\nCorvantide v4.0 Text Log for ") + profile +
                QStringLiteral("\r\n") + rule() + QStringLiteral("\r\n\r\n");
    }
    text += QStringLiteral("Log below saved at ") + FormatLongTime(QTime::currentTime()) +
            QStringLiteral(".\r\n") + rule() + QStringLiteral("\r\n") + view.text();
    QFile file(name);
    if (file.open(QIODevice::Append)) file.write(text.toUtf8());
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
        QDir().mkpath(logsFolder());
        const ChatDocument& view = table.chat(slot);
        const QString profile = table.bot(slot).Profile();
        if (view.isEmpty() || profile.isEmpty()) continue;
        saveLog(profile, view);
    }
}
