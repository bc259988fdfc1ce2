// Chat events: decoding of SID_CHATEVENT, the channel's presence, talk and
// whispers, and what the server says itself.
#include "chat/BotElement.h"
#include "chat/ChannelView.h"
#include "chat/EventNotices.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "commands/BotMail.h"
#include "commands/ChatProfanity.h"
#include "commands/ChatInput.h"
#include "commands/CommandWrapper.h"
#include "commands/DatabaseWrapper.h"
#include "config/SettingsWrapper.h"
#include "platform/Cp1252.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "presentation/EventTemplates.h"
#include "presentation/TextFormat.h"
#include "presentation/Theme.h"
#include "session/ConnectionWrapper.h"
#include "session/PacketReader.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <QRegularExpression>

namespace {

SettingsWrapper& settings() {
    return SettingsWrapper::instance();
}

QString plainName(const QString& username) {
    return ConvertUsername(username, false, -1);
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Within the flood delay of `since`?
bool withinFloodDelay(quint32 since) {
    const qint32 delay = settings().FloodMode();
    return delay > 0 && TicksSince(since) < quint32(delay);
}

void runScript(int Index, const char* sub, QVariantList args, const char* lineName = nullptr) {
    args.prepend(qint16(Index));
    PluginHost::instance().RunScript(Index, QString::fromLatin1(sub), args,
                                     lineName ? QString::fromLatin1(lineName) : QString());
}

// Server text patterns: "#" is one digit, "*" any run, the whole text must match.
bool matchesPattern(const QString& text, const QString& pattern) {
    QString regex;
    for (QChar c : pattern) {
        if (c == u'#')
            regex += QStringLiteral("[0-9]");
        else if (c == u'*')
            regex += QStringLiteral(".*");
        else
            regex += QRegularExpression::escape(QString(c));
    }
    return QRegularExpression(QRegularExpression::anchoredPattern(regex),
                              QRegularExpression::DotMatchesEverythingOption)
        .match(text)
        .hasMatch();
}

// "?trigger" tells ranked users the trigger and how to type it; others get
// silence.
void answerTriggerQuestion(int Index, const QString& Username, const QString& trigger) {
    QString name = plainName(Username);
    qint32 rank = 0;
    DatabaseWrapper().GrabRank(Index, name, rank);
    if (rank == 0) return;
    const int code = trigger.isEmpty() ? 0 : quint8(cp1252::encodeChar(trigger[0].unicode()));
    Bots(Index).Queue.append(QStringLiteral("Current trigger is: ") + trigger +
                             QStringLiteral(" (Alt + ") + QString::number(code) + u')');
}

// What a talk line may ask of the bot: a command behind the one-character
// trigger, the trigger itself, or mail.
void answerTalk(int Index, const QString& Username, const QString& Text) {
    const QString trigger = Bots(Index).Config.Trigger();
    if (trigger.size() == 1 && Text[0].toUpper() == trigger[0].toUpper() &&
        CommandWrapper().SearchCommands(Index, Username, Text.mid(1), false))
        return;
    if (Text.compare(QLatin1String("?trigger"), Qt::CaseInsensitive) == 0) {
        answerTriggerQuestion(Index, Username, trigger);
        return;
    }
    AnswerMailRequest(Index, Username, Text);
}

} // namespace

void ConnectionWrapper::Handle_ChatEvent(int Index, PacketReader& Reader) {
    const quint32 id = Reader.ReadDWORD();
    const qint32 flags = qint32(Reader.ReadDWORD());
    const qint32 ping = qint32(Reader.ReadDWORD());
    Reader.Skip(12);
    const QString username = Reader.ReadSharedSTRING();
    // A user shown, joining or changing flags comes with a statstring.
    const bool statstring = id == 1 || id == 2 || id == 9;
    const QString text = statstring ? Reader.ReadSharedSTRING() : Reader.ReadSTRING();
    if (settings().FloodMode() != 0)
        Bots(Index).AddEvent(Index, username, text, ping, flags, GetTickCount(),
                             QString::number(id));
    else
        RunChatEvent(Index, quint8(id), username, text, flags, ping);
    PluginHost::instance().DispatchChatEvent(Index, int(id), text, username, flags, ping);
}

void ConnectionWrapper::RunChatEvent(int Index, quint8 EventID, const QString& Username,
                                     const QString& Text, qint32 Flags, qint32 Ping) {
    switch (EventID) {
    case 1:
        Handle_ChatEvent_UserShow(Index, Username, Text, Flags, Ping);
        break;
    case 2:
        Handle_ChatEvent_Join(Index, Username, Text, Flags, Ping);
        break;
    case 3:
        Handle_ChatEvent_Leave(Index, Username, Text, Flags, Ping);
        break;
    case 4:
        Handle_ChatEvent_WhisperFrom(Index, Username, Text, Flags, Ping);
        break;
    case 5:
        Handle_ChatEvent_Talk(Index, Username, Text, Flags, Ping);
        break;
    case 6:
        Handle_ChatEvent_BroadCast(Index, Text);
        break;
    case 7:
        Handle_ChatEvent_JoinChannel(Index, Text, Flags);
        break;
    case 9:
        Handle_ChatEvent_UserFlags(Index, Username, Text, Flags, Ping);
        break;
    case 10:
        Handle_ChatEvent_WhisperTo(Index, Username, Text, Flags, Ping);
        break;
    case 13:
        Handle_ChannelFull(Index, Text);
        break;
    case 14:
        Handle_ChannelNotExist(Index, Text);
        break;
    case 15:
        Handle_ChannelRestricted(Index, Text);
        break;
    case 18:
        Handle_ChatEvent_Information(Index, Text);
        break;
    case 19:
        Handle_ChatEvent_Error(Index, Text);
        break;
    case 23:
        Handle_ChatEvent_Emote(Index, Username, Text, Flags, Ping);
        break;
    default:
        break; // only the plug-ins hear of it
    }
}

void ConnectionWrapper::Handle_ChatEvent_JoinChannel(int Index, const QString& Channel,
                                                     qint32 Flags) {
    BotElement& bot = Bots(Index);
    lvUsers(Index).clear();
    bot.userClear();
    bot.ChannelTick = GetTickCount();
    bot.setChannel(Channel);
    bot.ChannelFlags = Flags;
    if (SlotTable::instance().CurrentIndex() == Index) RefreshAliasesAndGroups(Index);
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.channeljoined, {}, {}, {}, 0, 0,
                Channel, Flags);
    if (Channel == QLatin1String("The Void")) {
        bot.MyFlags = 0;
        if (!settings().VoidView()) {
            const bool realm = bot.Config.Client().left(2).toUpper() == QLatin1String("D2");
            bot.Queue.append(
                QStringLiteral("/unsquelch ") +
                (realm ? ConvertUsername(bot.UniqueAccount, true, -1) : bot.UniqueAccount));
        }
    }
    runScript(Index, "Event_JoinChannel", {Channel, Flags});
}

void ConnectionWrapper::Handle_ChatEvent_UserShow(int Index, const QString& Username,
                                                  const QString& Text, qint32 Flags, qint32 Ping) {
    BotElement& bot = Bots(Index);
    const QString plain = plainName(Username);
    if (sameName(bot.UniqueAccount, plain)) {
        bot.MyFlags = Flags;
        bot.setMyPing(Ping);
        bot.MyStatstring = Text;
    }
    if (!settings().HidePresent())
        ParseOutput(Index, rtbChat(Index), CurrentTheme().events.present, EventUser::fromRaw(Username),
                    {}, Text, Ping, Flags);
    bot.userDel(Username);
    bot.userAdd(Username, Flags, Ping, Text, GetTickCount());
    channelview::RemoveUserItems(Index, plain);
    channelview::InsertUserItem(Index, Username, Flags, Ping, Text);
    runScript(Index, "Event_UserPresent", {Username, Text, Flags, Ping});
}

void ConnectionWrapper::Handle_ChatEvent_Join(int Index, const QString& Username,
                                              const QString& Text, qint32 Flags, qint32 Ping) {
    BotElement& bot = Bots(Index);
    if (!settings().HideJoinLeave()) {
        const bool repeat = Username == LastJoinUser && withinFloodDelay(LastJoinTick);
        if (!repeat) {
            LastJoinUser = Username;
            LastJoinTick = GetTickCount();
            ParseOutput(Index, rtbChat(Index), CurrentTheme().events.join, EventUser::fromRaw(Username),
                        {}, Text, Ping, Flags);
        }
    }
    const QString plain = plainName(Username);
    channelview::RemoveUserItems(Index, plain);
    bot.userAdd(Username, Flags, Ping, Text, GetTickCount());
    channelview::InsertUserItem(Index, Username, Flags, Ping, Text);
    NotifyMailOnJoin(Index, Username);
    runScript(Index, "Event_UserJoin", {Username, Text, Flags, Ping});
}

void ConnectionWrapper::Handle_ChatEvent_Leave(int Index, const QString& Username,
                                               const QString& Text, qint32 Flags, qint32 Ping) {
    BotElement& bot = Bots(Index);
    const QString plain = plainName(Username);
    const int position = bot.UserFind(plain);
    if (!settings().HideJoinLeave()) {
        const bool quick = position > 0 && withinFloodDelay(bot.user(position).Uptime);
        if (!quick)
            ParseOutput(Index, rtbChat(Index), CurrentTheme().events.leave,
                        EventUser::fromRaw(Username), Text, {}, Ping, Flags);
    }
    bot.userDel(plain);
    channelview::RemoveUserItems(Index, plain);
    if (bot.Config.Stalk() && sameName(bot.Config.Stalker(), plain)) Output_FriendsList(Index);
    runScript(Index, "Event_UserLeave", {Username});
}

void ConnectionWrapper::Handle_ChatEvent_UserFlags(int Index, const QString& Username,
                                                   const QString& Text, qint32 Flags, qint32 Ping) {
    BotElement& bot = Bots(Index);
    const QString plain = plainName(Username);
    const int position = bot.UserFind(plain);
    if (position > 0) {
        const bool had = bot.user(position).Flags & 0x02;
        const bool has = Flags & 0x02;
        const QString name = GetDisplayName(Username);
        if (had && !has)
            WriteChat(Index, Status::Information,
                      name + QStringLiteral(" lost channel operator status."));
        else if (!had && has)
            WriteChat(Index, Status::Information,
                      name + QStringLiteral(" gained channel operator status."));
    }
    const auto updateStored = [&] {
        if (position > 0) {
            UserElement& u = bot.user(position);
            u.Flags = Flags;
            u.Ping = Ping;
            u.Statstring = Text;
        }
    };
    if (Flags & 0x03) {
        channelview::RemoveUserItems(Index, plain);
        updateStored();
        channelview::InsertUserItem(Index, Username, Flags, Ping, Text);
    } else {
        updateStored();
        if (!channelview::UpdateUserItems(Index, Username, Flags, Ping, Text)) {
            bot.userAdd(Username, Flags, Ping, Text, GetTickCount());
            channelview::InsertUserItem(Index, Username, Flags, Ping, Text);
        }
    }
    if (sameName(plain, bot.UniqueAccount)) {
        bot.MyFlags = Flags;
        bot.MyStatstring = Text;
        bot.setMyPing(Ping);
    }
    runScript(Index, "Event_UserUpdate", {Username, Text, Flags, Ping});
}

void ConnectionWrapper::Handle_ChannelFull(int Index, const QString& Text) {
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.channelfull, {}, Text);
    runScript(Index, "Event_ChannelFull", {Text});
}

void ConnectionWrapper::Handle_ChannelNotExist(int Index, const QString& Text) {
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.channeldoesnotexist, {}, Text);
    runScript(Index, "Event_ChannelDoesNotExist", {Text});
}

void ConnectionWrapper::Handle_ChannelRestricted(int Index, const QString& Text) {
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.channelrestricted, {}, Text);
    runScript(Index, "Event_ChannelRestricted", {Text});
}

void ConnectionWrapper::Handle_ChatEvent_Talk(int Index, const QString& Username, QString Text,
                                              qint32 Flags, qint32 Ping) {
    BotElement& bot = Bots(Index);
    const QString plain = plainName(Username);
    if (settings().DecodeUTF8()) Text = DecodeUTF8(Text);
    const int current = SlotTable::instance().CurrentIndex();
    if (bot.Channel() != Bots(current).Channel()) {
        bot.IsActive = true;
        bot.LastActive = GetTickCount();
    }
    bool shown = false;
    if (!(IsBlocked(plain) || IsFiltered(Text))) {
        if (Text.size() >= 2) {
            const char16_t first = Text[0].unicode();
            if (first == 171 || (first == 164 && settings().Decryption())) DecryptChat(Text);
            answerTalk(Index, Username, Text);
        }
        const int position = bot.UserFind(plain);
        bool gated = false;
        if (position > 0) {
            UserElement& u = bot.user(position);
            u.LastAction = GetTickCount();
            gated = u.Uptime > 0 && withinFloodDelay(u.Uptime);
            if (!gated) u.Uptime = GetTickCount();
        }
        shown = !gated;
    }
    if (shown) {
        const QString seen = ShownWithProfanitySettings(Text);
        ParseOutput(Index, rtbChat(Index), CurrentTheme().events.talk, EventUser::fromRaw(Username),
                    seen, {}, Ping, Flags);
        NotifyEvent(Index, NoticeEvent::Talk, Username, seen);
    }
    runScript(Index, "Event_UserTalk", {Username, Text, Flags, Ping});
}

void ConnectionWrapper::Handle_ChatEvent_Emote(int Index, const QString& Username, QString Text,
                                               qint32 Flags, qint32 Ping) {
    BotElement& bot = Bots(Index);
    const QString plain = plainName(Username);
    const int position = bot.UserFind(plain);
    if (position > 0) {
        UserElement& u = bot.user(position);
        u.LastAction = GetTickCount();
        if (withinFloodDelay(u.Uptime)) return;
    }
    if (settings().DecodeUTF8()) Text = DecodeUTF8(Text);
    if (!(IsBlocked(plain) || IsFiltered(Text))) {
        const QString seen = ShownWithProfanitySettings(Text);
        ParseOutput(Index, rtbChat(Index), CurrentTheme().events.emote, EventUser::fromRaw(Username),
                    seen, {}, Ping, Flags);
        NotifyEvent(Index, NoticeEvent::Emote, Username, seen);
    }
    runScript(Index, "Event_UserEmote", {Username, Text, Flags, Ping}, "Event_Emote");
}

void ConnectionWrapper::Handle_ChatEvent_WhisperFrom(int Index, const QString& Username,
                                                     QString Text, qint32 Flags, qint32& Ping) {
    BotElement& bot = Bots(Index);
    bot.LastWhisper = Username;
    if (settings().DecodeUTF8()) Text = DecodeUTF8(Text);
    const QString plain = plainName(Username);
    const int position = bot.UserFind(plain);
    bool passes = true;
    if (position > 0) {
        UserElement& u = bot.user(position);
        u.LastAction = GetTickCount();
        passes = !withinFloodDelay(u.Uptime);
    }
    if (passes && !(IsBlocked(plain) || IsFiltered(Text))) {
        ChatDocument& view = settings().WhisperPanel() ? rtbWhisper(Index) : rtbChat(Index);
        const QString seen = ShownWithProfanitySettings(Text);
        ParseOutput(Index, view, CurrentTheme().events.whisperfrom, EventUser::fromRaw(Username), seen,
                    {}, Ping, Flags);
        const QString trigger = bot.Config.Trigger();
        if (!Text.isEmpty() && !trigger.isEmpty() && Text[0] == trigger[0])
            CommandWrapper().SearchCommands(Index, Username, Text.mid(1), false);
        NotifyEvent(Index, NoticeEvent::Whisper, Username, seen);
    }
    const bool friendExited =
        matchesPattern(Text, QStringLiteral("Your friend * has exited Battle.net."));
    if (friendExited ||
        matchesPattern(Text, QStringLiteral("Your friend * has entered Battle.net."))) {
        Output_FriendsList(Index);
        NotifyEvent(Index, friendExited ? NoticeEvent::FriendExited : NoticeEvent::FriendEntered,
                    Username, Text);
    }
    runScript(Index, "Event_WhisperFrom", {Username, Text, Flags, Ping});
}

void ConnectionWrapper::Handle_ChatEvent_WhisperTo(int Index, const QString& Username, QString Text,
                                                   qint32 Flags, qint32& Ping) {
    Bots(Index).LastWhispered = Username;
    if (settings().DecodeUTF8()) Text = DecodeUTF8(Text);
    ChatDocument& view = settings().WhisperPanel() ? rtbWhisper(Index) : rtbChat(Index);
    ParseOutput(Index, view, CurrentTheme().events.whisperto, EventUser::fromRaw(Username),
                ShownWithProfanitySettings(Text), {}, Ping, Flags);
    runScript(Index, "Event_WhisperTo", {Username, Text, Flags, Ping});
}

void ConnectionWrapper::Handle_ChatEvent_Information(int Index, const QString& Text) {
    const QString line = QStringLiteral("[BNET] ") + Text;
    BotElement& bot = Bots(Index);
    if (Text == QLatin1String("Your friends are:")) {
        if (settings().HideOfflineFriends())
            WriteChat(Index,
                      {{StatusColor(Status::Information), line},
                       {0x404040, QStringLiteral(" (Corvantide is hiding your offline friends)")}});
        else
            WriteChat(Index, Status::Information, line);
    } else if (matchesPattern(Text, QStringLiteral("##: * offline")) ||
               matchesPattern(Text, QStringLiteral("#: * offline"))) {
        if (!settings().HideOfflineFriends()) WriteChat(Index, Status::Information, line);
    } else if (matchesPattern(Text, QStringLiteral("* was unbanned by *")) ||
               matchesPattern(Text, QStringLiteral("* was banned by *"))) {
        if (!settings().HideBanUnban()) WriteChat(Index, Status::Warning, line);
    } else if (matchesPattern(Text, QStringLiteral("Removed * from your friends list."))) {
        const QString name = Text.mid(8).section(u' ', 0, 0);
        ListModel& friends = lvFriends(Index);
        for (int i = friends.count(); i >= 1; --i) {
            if (sameName(friends.item(i).tag, name)) friends.removeAt(i);
        }
        WriteChat(Index, Status::Information, line);
    } else if (matchesPattern(Text, QStringLiteral("Added * to your friends list."))) {
        const QString client = bot.Config.Client().toUpper();
        if (client == QLatin1String("D2XP") || client == QLatin1String("W2BN") ||
            client == QLatin1String("D2DV"))
            Output_FriendsList(Index);
        WriteChat(Index, Status::Information, line);
    } else if (matchesPattern(Text, QStringLiteral("* kicked you out of the channel!"))) {
        bot.ClearQueue();
        bot.Queue.append(QStringLiteral("/join ") + bot.ChannelNonVoid());
        NotifyEvent(Index, NoticeEvent::Kicked, {}, Text);
        WriteChat(Index, Status::Warning, line);
        WriteChat(Index, Status::Information, QStringLiteral("[BNET] Attempting to rejoin..."));
    } else {
        WriteChat(Index, Status::Warning, line);
    }
    runScript(Index, "Event_Information", {Text});
}

void ConnectionWrapper::Handle_ChatEvent_Error(int Index, const QString& Text) {
    WriteChat(Index, Status::Error, QStringLiteral("[BNET] ") + Text);
    ConfigWrapper& config = Bots(Index).Config;
    if (Text.contains(QLatin1String("maximum number of friends")) && config.Stalk()) {
        const ListModel& friends = lvFriends(Index);
        bool listed = false;
        for (int i = 1; i <= friends.count(); ++i)
            listed = listed || sameName(friends.item(i).text, config.Stalker());
        if (!listed) {
            WriteChat(Index, Status::Error,
                      QStringLiteral("Maximum friend limit has been reached therefore that user "
                                     "cannot be stalked. Stalking has been disabled."));
            config.setStalk(false);
            config.setStalker(QString());
        }
    }
    runScript(Index, "Event_Error", {Text});
}

void ConnectionWrapper::Handle_ChatEvent_BroadCast(int Index, const QString& Text) {
    ParseOutput(Index, rtbChat(Index), CurrentTheme().events.broadcast, {}, Text);
    runScript(Index, "Event_Broadcast", {Text});
}
