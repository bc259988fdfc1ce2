#include "commands/ChatInput.h"

#include "chat/BotElement.h"
#include "chat/ChannelView.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "commands/ChatProfanity.h"
#include "commands/CommandWrapper.h"
#include "config/SettingsWrapper.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "presentation/EventTemplates.h"
#include "presentation/Theme.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "social/ClanCommands.h"
#include "social/ClanNotices.h"
#include "social/ClanPacket.h"
#include "statistics/UserNames.h"

namespace {

bool isWord(const QString& word, std::initializer_list<const char*> names) {
    for (const char* name : names)
        if (word == QLatin1String(name)) return true;
    return false;
}

// Diablo II realms reach an account as "*account"; a name with a gateway
// tag is left to the server.
QString rewriteRealmWhisper(int Index, const QString& text) {
    const qsizetype blank = text.indexOf(u' ');
    const QString rest = text.mid(blank + 1);
    const qsizetype second = rest.indexOf(u' ');
    if (!IsDiabloRealm(Bots(Index).Config.Client()) || second < 0 || rest.startsWith(u'*'))
        return text;
    const QString word = text.left(blank);
    QString name = rest.left(second);
    const QString message = rest.mid(second + 1);
    bool tagged = false;
    for (const char* tag : {"@USEast", "@USWest", "@Europe", "@Asia"})
        tagged = tagged || name.contains(QLatin1String(tag));
    if (!tagged) return word + QStringLiteral(" *") + name + u' ' + message;
    if (name.contains(u'*')) name = u'*' + ConvertUsername(name, false, -1);
    return word + u' ' + name + u' ' + message;
}

void sendToAll(const QString& rest) {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).Online() && Bots(i).IsLoaded) Bots(i).Queue.append(rest);
    }
}

// "/echo cmd" runs a bot command whose replies go to the channel.
void echoCommand(int Index, const QString& text, qsizetype minimum, const QString& rest) {
    if (text.size() < minimum) return;
    if (!CommandWrapper().SearchCommands(Index, {}, rest, false))
        WriteChat(Index, {{255, QStringLiteral("This command is not available via the echo "
                                               "command, to use echo type /echo <cmd> "
                                               "[<arguments>].")}});
}

// "/r" and "/fwd": a second trip through the queue as a whisper, or the line
// back into the send box when there is nobody to answer.
void whisperBack(int Index, const QString& target, const QString& retype, const QString& rest,
                 const char* nobody) {
    if (target.isEmpty()) {
        WriteChat(Index, {{255, QLatin1String(nobody)}});
        SlotTable::instance().refillSendBox(Index, retype + rest);
        return;
    }
    Bots(Index).Queue.append(QStringLiteral("/w ") + target + u' ' + rest);
}

// The typed answer to a clan invitation, for a run without its dialog.
void answerClanInvitation(int Index, bool accept) {
    if (!ClanNotices::instance().answerOldest(Index, accept))
        WriteChat(Index, Status::Error,
                  QStringLiteral("No clan invitation is waiting for an answer."));
}

// The slash commands the bot answers itself. Returns true when the line ends
// here; a whisper may come back rewritten in `text`.
bool runLocalCommand(int Index, QString& text) {
    BotElement& bot = Bots(Index);
    const qsizetype blank = text.indexOf(u' ');
    if (blank < 0) {
        const QString word = text.toLower();
        if (isWord(word, {"/profile", "/p"}))
            bot.Connection.Output_ProfileRequest(Index, bot.Config.Account());
        else if (isWord(word, {"/accept", "/decline"}))
            answerClanInvitation(Index, word == QLatin1String("/accept"));
        else if (word == QLatin1String("/members"))
            ClanPacket::WriteMembers(Index);
        else if (word == QLatin1String(ClanCommands::kWord))
            ClanCommands::Run(Index, {});
        else
            return false;
        return true;
    }
    const QString word = text.left(blank).toLower();
    const QString rest = text.mid(blank + 1);
    if (isWord(word, {"/w", "/m", "/msg", "/whisper"})) {
        text = rewriteRealmWhisper(Index, text);
        return false;
    }
    if (isWord(word, {"/profile", "/p"}))
        bot.Connection.Output_ProfileRequest(Index, rest);
    else if (word == QLatin1String("/sendall"))
        sendToAll(rest);
    else if (word == QLatin1String(ClanCommands::kWord))
        ClanCommands::Run(Index, rest);
    else if (word == QLatin1String("/echo"))
        echoCommand(Index, text, 7, rest);
    else if (word == QLatin1String("/e"))
        echoCommand(Index, text, 4, rest);
    else if (isWord(word, {"/reply", "/r"}))
        whisperBack(Index, bot.LastWhisper, QStringLiteral("/r "), rest,
                    "No one has whispered you yet, please use /w <username> instead.");
    else if (isWord(word, {"/fwd", "/forward"}))
        whisperBack(Index, bot.LastWhispered, QStringLiteral("/fwd "), rest,
                    "You have not whispered anyone yet, please use /w <username> instead.");
    else
        return false;
    return true;
}

// The bot's own talk as the channel sees it, decoded when it went out coded.
void showOwnTalk(int Index, const QString& text) {
    BotElement& bot = Bots(Index);
    QString shown = text;
    if (shown[0].unicode() == 164 || shown[0].unicode() == 171) DecryptChat(shown);
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.talk, bot.UniqueAccount,
                ShownWithProfanitySettings(shown), {},
                bot.MyPing(), bot.MyFlags);
}

} // namespace

QString SendUserLine(int Index, const QString& Text) {
    QString line = Text;
    if (!line.startsWith(u'/')) {
        if (SettingsWrapper::instance().Encryption()) EncryptChat(line);
        Bots(Index).Queue.append(line);
    } else if (!CommandWrapper().SearchCommands(Index, {}, line.mid(1), true)) {
        Bots(Index).Queue.append(line);
    }
    return line;
}

void SendCommandReply(int Index, bool FromConsole, const QString& Text, quint32 Colour) {
    if (FromConsole)
        WriteChat(Index, {{Colour, Text}});
    else
        Bots(Index).Queue.append(Text);
}

void SendChatLine(int Index, QString Text) {
    if (!Bots(Index).Online()) return;
    Text.remove(u'\n');
    Text.remove(u'\r');
    Text.remove(QChar(u'\0'));
    if (Text.isEmpty() || runLocalCommand(Index, Text)) return;
    PluginHost::instance().PressedEnter(Index, Text);
    if (Text.isEmpty()) return;
    PacketWriter w;
    w.WriteSTRING(Text);
    w.SendPacket(Index, 0x0E);
    if (Text.startsWith(u'/')) return; // the server's answer shows by itself
    showOwnTalk(Index, Text);
}
void EncryptChat(QString& Text) {
    QString out(QChar(171));
    for (QChar c : Text) {
        const char16_t code = c.unicode();
        if (code >= 65 && code <= 90)
            out += QChar(char16_t(code + 127));
        else if (code >= 97 && code <= 122)
            out += QChar(char16_t(code + 121));
        else if (code >= 48 && code <= 57)
            out += QChar(char16_t(code + 196));
        else
            out += c;
    }
    Text = out;
}

void DecryptChat(QString& Text) {
    QString out;
    for (QChar c : Text) {
        const char16_t code = c.unicode();
        if (code >= 192 && code <= 217)
            out += QChar(char16_t(code - 127));
        else if (code >= 218 && code <= 243)
            out += QChar(char16_t(code - 121));
        else if (code >= 244 && code <= 253)
            out += QChar(char16_t(code - 196));
        else
            out += c;
    }
    Text = out.mid(1);
}
