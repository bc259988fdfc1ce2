#include "gui/UserLine.h"

#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"

QString SubmitUserLine(int Index, const QString& Text) {
    QString line = Text;
    if (!line.startsWith(u'/') && SettingsWrapper::instance().Encryption()) EncryptChat(line);
    Bots(Index).Queue.append(line);
    return line;
}
