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
#include <memory>
#include <optional>
#include <vector>

namespace {

// The values of the tokens for one event, each worked out at most once and
// only when a part asks for it.
class TokenValues {
public:
    TokenValues(const EventUser& user, const QString& message, const QString& statstring,
                qint32 ping, qint32 flags, const QString& channel, qint32 channelFlags)
        : m_user(user), m_message(message), m_statstring(statstring), m_ping(ping), m_flags(flags),
          m_channel(channel), m_channelFlags(channelFlags) {}

    // `present` tells which tokens the text held before any replacement, so
    // that a token it lacks costs no search until a value has gone in (a
    // value may itself hold a token, which the steps after it replace).
    void replaceIn(QString& text, quint32 present) {
        m_replaced = false;
        m_present = present;
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

    // The tokens a text holds, as replaceIn takes them.
    static quint32 tokensIn(const QString& text) {
        quint32 present = 0;
        if (!text.contains(u'%')) return present;
        int slot = 0;
        for (QStringView token : kTokens) {
            if (text.contains(token)) present |= 1u << slot;
            ++slot;
        }
        return present;
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

    static constexpr QStringView kTokens[] = {
        u"%sp",    u"%user",          u"%group",     u"%flags_display", u"%message",
        u"%stats", u"%client",        u"%ping_icon", u"%ping_status",   u"%ping",
        u"%flags", u"%channel_flags", u"%channel"};

    template <typename Value>
    void replace(QString& text, Token slot, QStringView token, Value value) {
        if (m_replaced ? !(m_percent && text.contains(token)) : !(m_present & (1u << slot))) return;
        std::optional<QString>& cached = m_cache[slot];
        if (!cached) cached = value();
        text.replace(token.data(), token.size(), cached->constData(), cached->size());
        m_replaced = true;
        // Without a '%' left no later token can be in the text.
        m_percent = text.contains(u'%');
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
    quint32 m_present = 0;
    bool m_replaced = false;
    bool m_percent = true;
};

// A template cut into its parts, each a colour mark and a text, with the
// tokens each text holds; a theme has a few templates, cut once each.
struct TemplateParts {
    struct Part {
        QChar mark;
        QString text;
        quint32 tokens = 0;
    };
    QString source;
    std::vector<Part> parts;
};

std::shared_ptr<const TemplateParts> cut(const QString& Template) {
    static std::vector<std::shared_ptr<const TemplateParts>> known;
    for (const auto& t : known) {
        if (t->source == Template) return t;
    }
    if (known.size() >= 64) known.clear();
    auto made = std::make_shared<TemplateParts>();
    TemplateParts& t = *made;
    t.source = Template;
    QString marked = Template;
    marked.replace(QLatin1String("#user"), QLatin1String("#A"));
    const QStringList parts = marked.split(u'#');
    for (qsizetype i = 1; i < parts.size(); ++i) {
        // An empty part has a blank for its mark.
        const QChar mark = parts[i].isEmpty() ? QChar(u' ') : parts[i][0];
        const QString text = parts[i].mid(1);
        t.parts.push_back({mark, text, TokenValues::tokensIn(text)});
    }
    known.push_back(made);
    return made;
}

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
        const std::shared_ptr<const TemplateParts> parts = cut(Template);
        WriteTimestamp(view);

        TokenValues tokens(user, message, statstring, ping, flags, channel, channelFlags);
        for (const TemplateParts::Part& part : parts->parts) {
            QString text = part.text;
            tokens.replaceIn(text, part.tokens);
            WriteChatView(view, {{markColor(part.mark, slot, user.plain, flags), text}});
        }
        WriteChatView(view, {{0xFFFFFF, QStringLiteral("\r\n")}});
    } catch (const std::exception& e) {
        ReportError(QStringLiteral("ParseOutput"), QString::fromLocal8Bit(e.what()), message);
    }
}
