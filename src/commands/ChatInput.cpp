#include "commands/ChatInput.h"

#include "chat/BotElement.h"
#include "chat/ChannelView.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "config/SettingsWrapper.h"
#include "presentation/ChatWriter.h"
#include "presentation/EventTemplates.h"
#include "presentation/Theme.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

namespace {

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

} // namespace

QString SubmitUserLine(int Index, const QString& Text) {
    QString line = Text;
    if (!line.startsWith(u'/') && SettingsWrapper::instance().Encryption()) EncryptChat(line);
    Bots(Index).Queue.append(line);
    return line;
}

void SendCommandReply(int Index, bool FromConsole, const QString& Text, quint32 Colour) {
    if (FromConsole)
        WriteChat(Index, {{Colour, Text}});
    else
        Bots(Index).Queue.append(Text);
}

void SendChatLine(int Index, QString Text) {
    BotElement& bot = Bots(Index);
    if (!bot.Online()) return;
    Text.remove(u'\n');
    Text.remove(u'\r');
    Text.remove(QChar(u'\0'));
    if (Text.isEmpty()) return;
    const qsizetype blank = Text.indexOf(u' ');
    if (blank >= 0) {
        const QString word = Text.left(blank).toLower();
        const QString rest = Text.mid(blank + 1);
        if (word == QLatin1String("/w") || word == QLatin1String("/m") ||
            word == QLatin1String("/msg") || word == QLatin1String("/whisper")) {
            Text = rewriteRealmWhisper(Index, Text);
        } else if (word == QLatin1String("/sendall")) {
            SlotTable& table = SlotTable::instance();
            for (int i = 1; i <= table.highestIndex(); ++i) {
                if (Bots(i).Online() && Bots(i).IsLoaded) Bots(i).Queue.append(rest);
            }
            return;
        } else if (word == QLatin1String("/reply") || word == QLatin1String("/r")) {
            if (bot.LastWhisper.isEmpty()) {
                WriteChat(Index, {{255, QStringLiteral("No one has whispered you yet, please use "
                                                       "/w <username> instead.")}});
                return;
            }
            bot.Queue.append(QStringLiteral("/w ") + bot.LastWhisper + u' ' + rest);
            return;
        } else if (word == QLatin1String("/fwd") || word == QLatin1String("/forward")) {
            if (bot.LastWhispered.isEmpty()) {
                WriteChat(Index, {{255, QStringLiteral("You have not whispered anyone yet, please "
                                                       "use /w <username> instead.")}});
                return;
            }
            bot.Queue.append(QStringLiteral("/w ") + bot.LastWhispered + u' ' + rest);
            return;
        }
    }
    PacketWriter w;
    w.WriteSTRING(Text);
    w.SendPacket(Index, 0x0E);
    if (Text.startsWith(u'/')) return; // the server's answer shows by itself
    // The bot's own talk, as the channel sees it, decoded when it went out coded.
    QString shown = Text;
    if (shown[0].unicode() == 164 || shown[0].unicode() == 171) DecryptChat(shown);
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.talk, bot.UniqueAccount, shown, {},
                bot.MyPing(), bot.MyFlags);
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
