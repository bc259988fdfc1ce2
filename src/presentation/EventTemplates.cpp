#include "presentation/EventTemplates.h"

#include "commands/AliasesAndGroups.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "presentation/UserColors.h"
#include "statistics/FlagNames.h"
#include "statistics/Statstring.h"
#include "statistics/UserNames.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace {

// The values of the tokens for one event, each worked out at most once and
// only when a part asks for it.
class TokenValues {
public:
    TokenValues(const EventUser& user, const QString& message, const QString& statstring, qint32 ping,
                qint32 flags, const QString& channel, qint32 channelFlags)
        : m_user(user), m_message(message), m_statstring(statstring), m_ping(ping), m_flags(flags),
          m_channel(channel), m_channelFlags(channelFlags) {}

    void replaceIn(QString& text) {
        if (!text.contains(u'%')) return;
        replace(text, Sp, u"%sp", [] { return QStringLiteral(" "); });
        replace(text, User, u"%user", [this] { return m_user.shown; });
        replace(text, Group, u"%group", [this] { return group(); });
        replace(text, FlagsDisplay, u"%flags_display",
                [this] { return GetUserFlagNames(quint32(m_flags)); });
        replace(text, Message, u"%message", [this] { return m_message; });
        replace(text, Stats, u"%stats", [this] { return ParseStatstring(m_statstring, true); });
        replace(text, Client, u"%client", [this] { return client(); });
        replace(text, PingIcon, u"%ping_icon", [this] { return GetPingIcon(m_ping); });
        replace(text, PingStatus, u"%ping_status", [this] { return GetPingStatus(m_ping); });
        replace(text, Ping, u"%ping",
                [this] { return QString::number(m_ping) + QStringLiteral("ms"); });
        replace(text, Flags, u"%flags", [this] { return QString::number(m_flags); });
        replace(text, ChannelFlags, u"%channel_flags",
                [this] { return GetChannelFlagNames(quint32(m_channelFlags)); });
        replace(text, Channel, u"%channel", [this] { return m_channel; });
    }

private:
    enum Token {
        Sp,
        User,
        Group,
        FlagsDisplay,
        Message,
        Stats,
        Client,
        PingIcon,
        PingStatus,
        Ping,
        Flags,
        ChannelFlags,
        Channel,
        TokenCount
    };

    template <typename Value>
    void replace(QString& text, Token slot, QStringView token, Value value) {
        if (!text.contains(token)) return;
        std::optional<QString>& cached = m_cache[slot];
        if (!cached) cached = value();
        text.replace(token.toString(), *cached);
    }

    // The group's prefix and a space, for a user in a group.
    QString group() const {
        const QString name = FindGroup(m_user.plain);
        return name.isEmpty() ? QString() : GetGroupPrefix(name) + u' ';
    }

    QString client() const {
        QString code = m_statstring.left(4);
        std::reverse(code.begin(), code.end());
        return code;
    }

    const EventUser& m_user;
    const QString& m_message;
    const QString& m_statstring;
    qint32 m_ping;
    qint32 m_flags;
    const QString& m_channel;
    qint32 m_channelFlags;
    std::optional<QString> m_cache[TokenCount];
};

quint32 markColor(QChar mark, int slot, const QString& user, qint32 flags) {
    const ThemeRecord& theme = CurrentTheme();
    if (mark >= u'0' && mark <= u'9') return theme.custom[size_t(mark.unicode() - u'0')];
    if (mark == u'A') return GetUserColor(slot, user, flags, true);
    return theme.interface.ForeColor;
}

} // namespace

EventUser::EventUser(const QString& name) : shown(name), plain(ConvertUsername(name, false, -1)) {}

EventUser EventUser::fromRaw(const QString& raw) {
    EventUser user(raw);
    user.shown = GetDisplayName(raw);
    return user;
}

void ParseOutput(int slot, ChatDocument& view, const QString& Template, const EventUser& user,
                 const QString& message, const QString& statstring, qint32 ping, qint32 flags,
                 const QString& channel, qint32 channelFlags) {
    if (Template.isEmpty()) return;
    ChatWriteBatch batch;
    try {
        QString marked = Template;
        marked.replace(QLatin1String("#user"), QLatin1String("#A"));
        WriteTimestamp(view);

        TokenValues tokens(user, message, statstring, ping, flags, channel, channelFlags);
        const QStringList parts = marked.split(u'#');
        for (qsizetype i = 1; i < parts.size(); ++i) {
            // An empty part has a blank for its mark.
            const QChar mark = parts[i].isEmpty() ? QChar(u' ') : parts[i][0];
            QString text = parts[i].mid(1);
            tokens.replaceIn(text);
            WriteChatView(view, {{markColor(mark, slot, user.plain, flags), text}});
        }
        WriteChatView(view, {{0xFFFFFF, QStringLiteral("\r\n")}});
    } catch (const std::exception& e) {
        ReportError(QStringLiteral("ParseOutput"), QString::fromLocal8Bit(e.what()), message);
    }
}
