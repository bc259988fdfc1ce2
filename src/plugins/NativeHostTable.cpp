#include "plugins/NativeHostTable.h"

#define CORVANTIDE_HOST
#include "corvantide/plugin.h"
#include "plugins/PluginMainForm.h"
#include "plugins/objCache.h"
#include "plugins/objConfiguration.h"
#include "plugins/objMusic.h"
#include "plugins/objPlugin.h"
#include "presentation/ChatWriter.h"

#include <QByteArray>
#include <QMetaObject>
#include <deque>
#include <type_traits>

namespace {

objPlugin& plugin() {
    static auto* object = new objPlugin(&PluginMainForm::instance());
    return *object;
}

objCache& cache() {
    return *static_cast<objCache*>(plugin().Cache());
}

objConfiguration& configuration() {
    return *static_cast<objConfiguration*>(plugin().Configuration());
}

objMusic& music() {
    return *static_cast<objMusic*>(plugin().Music());
}

PluginMainForm& form() {
    return PluginMainForm::instance();
}

// Texts handed to plug-ins live until the outermost member returns.
std::deque<QByteArray>& handedOut() {
    static std::deque<QByteArray> texts;
    return texts;
}

const char* handOut(const QString& text) {
    handedOut().push_back(text.toUtf8());
    return handedOut().back().constData();
}

QString text(const char* utf8) {
    return QString::fromUtf8(utf8 ? utf8 : "");
}

// Every function of the table runs its work through here, so that nothing
// thrown reaches the plug-in's C frames.
template <typename Work> auto host(Work work) noexcept -> decltype(work()) {
    using Result = decltype(work());
    try {
        return work();
    } catch (...) {
        if constexpr (std::is_same_v<Result, const char*>)
            return "";
        else if constexpr (!std::is_void_v<Result>)
            return Result{};
    }
}

void fillUser(corvantide_user* out, const QVariantMap& user, const char* name) {
    out->Name = handOut(user.value(QString::fromLatin1(name)).toString());
    out->Stats = handOut(user.value(QStringLiteral("Stats")).toString());
    out->Flags = user.value(QStringLiteral("Flags")).toInt();
    out->Ping = user.value(QStringLiteral("Ping")).toInt();
    out->Uptime = user.value(QStringLiteral("Uptime")).toUInt();
    out->Active = user.value(QStringLiteral("Active")).toUInt();
}

// objConfiguration's "GetChannel" and "SetChannel", called by name; a name
// it lacks is a red line as its own failures are.
bool noSuchSetting(const QByteArray& member, int index) {
    WriteChat(0, {{255, QStringLiteral("Error -> ") + QString::fromUtf8(member) +
                            QStringLiteral("(BotIndex: ") + QString::number(index) +
                            QStringLiteral(") - raised error objConfiguration has no such "
                                           "member")}});
    return false;
}

const char* getConfiguration(int index, const char* setting) {
    return host([&] {
        const QByteArray member = "Get" + QByteArray(setting ? setting : "");
        QVariant value;
        if (!QMetaObject::invokeMethod(&configuration(), member.constData(), Qt::DirectConnection,
                                       Q_RETURN_ARG(QVariant, value), Q_ARG(int, index)))
            noSuchSetting(member, index);
        return handOut(value.toString());
    });
}

void setConfiguration(int index, const char* setting, const char* value) {
    host([&] {
        const QByteArray member = "Set" + QByteArray(setting ? setting : "");
        if (!QMetaObject::invokeMethod(&configuration(), member.constData(), Qt::DirectConnection,
                                       Q_ARG(int, index), Q_ARG(QVariant, QVariant(text(value)))))
            noSuchSetting(member, index);
    });
}

} // namespace

void ReleaseHandedOutTexts() {
    handedOut().clear();
}

const corvantide_host& NativeHostTable() {
    static const corvantide_host table{
        CORVANTIDE_PLUGIN_VERSION,
        sizeof(corvantide_host),
        // Version 1.
        [](const char* name, uint32_t flags) {
            host([&] { form().RegisterPlugin(text(name), flags); });
        },
        [](const char* owner, const char* name, int icon, int arg) {
            host([&] { form().AddOption(text(owner), text(name), icon, arg); });
        },
        [](const char* owner, int arg) {
            return host([&] { return int(form().DeleteOption(text(owner), arg)); });
        },
        [] { return host([] { return plugin().BotIndex(); }); },
        [](int index, int count, const uint32_t* colours, const char* const* texts) {
            host([&] {
                QVariantList pairs;
                for (int i = 0; i < count; ++i)
                    pairs << colours[i] << text(texts[i]);
                plugin().AddText(index, pairs);
            });
        },
        [](int index, const char* line) { host([&] { plugin().AddQueue(index, text(line)); }); },
        [](int i) { return host([&] { return int(cache().BotOnline(i)); }); },
        [](int i) { return host([&] { return handOut(cache().BotName(i)); }); },
        [](int i) { return host([&] { return handOut(cache().BotChannel(i)); }); },
        [](int i) { return host([&] { return cache().UserCount(i); }); },
        // Version 2: the main form.
        [](const char* path) {
            return host([&] { return handOut(form().GetBaseName(text(path))); });
        },
        [] { return host([] { return form().CurrentIndex(); }); },
        [](int index) { host([&] { form().SelectBot(index); }); },
        [](const char* name) { return host([&] { return form().LoadProfile(text(name)); }); },
        [](const char* name) {
            return host([&] { return int(form().UnloadProfile(text(name))); });
        },
        [](int index) { host([&] { form().ConnectBot(index); }); },
        [] { host([] { form().DisplayProfiles(); }); },
        [](int index, uint32_t colour, const char* line) {
            host([&] { form().WriteChat(index, colour, text(line)); });
        },
        [] { return host([] { return handOut(form().ThemePath()); }); },
        [](const char* name) { host([&] { form().LoadSettingsFile(text(name)); }); },
        [] { host([] { form().guiReset(); }); },
        [](const char* list) { host([&] { form().SelectList(text(list)); }); },
        [] { host([] { form().DisplayChannels(); }); },
        [] { host([] { form().LoadFonts(); }); },
        // objCache: users.
        [](int i, corvantide_user* users, int capacity) {
            return host([&] {
                const QVariantMap list = cache().UserList(i).toMap();
                const int count = list.value(QStringLiteral("Count")).toInt();
                const QVariantList names = list.value(QStringLiteral("Names")).toList();
                const QVariantList stats = list.value(QStringLiteral("Stats")).toList();
                const QVariantList flags = list.value(QStringLiteral("Flags")).toList();
                const QVariantList ping = list.value(QStringLiteral("Ping")).toList();
                const QVariantList uptime = list.value(QStringLiteral("Uptime")).toList();
                const QVariantList active = list.value(QStringLiteral("Active")).toList();
                for (int n = 0; n < count && n < capacity; ++n) {
                    fillUser(&users[n],
                             {{"Name", names.value(n)},
                              {"Stats", stats.value(n)},
                              {"Flags", flags.value(n)},
                              {"Ping", ping.value(n)},
                              {"Uptime", uptime.value(n)},
                              {"Active", active.value(n)}},
                             "Name");
                }
                return count;
            });
        },
        [](int i, int U, corvantide_user* user) {
            return host([&] {
                const QVariant found = cache().User(i, U);
                if (!found.isValid()) return 0;
                fillUser(user, found.toMap(), "Name");
                return 1;
            });
        },
        [](int i, const char* name) {
            return host([&] { return cache().UserFind(i, text(name)); });
        },
        // objCache: the userbase.
        [](int i) { return host([&] { return cache().DatabaseCount(i); }); },
        [](int i, int position, const char** username, int32_t* rank) {
            return host([&] {
                const QVariantMap entry = cache().DatabaseUser(i, position).toMap();
                if (entry.isEmpty()) return 0;
                *username = handOut(entry.value(QStringLiteral("Username")).toString());
                *rank = entry.value(QStringLiteral("Rank")).toInt();
                return 1;
            });
        },
        [](int i, const char* name, const char** found, int32_t* rank) {
            return host([&] {
                const QVariantMap entry = cache().DatabaseUserFind(i, text(name)).toMap();
                if (entry.isEmpty()) return 0;
                *found = handOut(entry.value(QStringLiteral("Username")).toString());
                *rank = entry.value(QStringLiteral("Rank")).toInt();
                return 1;
            });
        },
        // objCache: the machine and the program.
        [] { return host([] { return handOut(cache().CpuOS()); }); },
        [] { return host([] { return handOut(cache().CpuName()); }); },
        [] { return host([] { return handOut(cache().CpuLanguage()); }); },
        [] { return host([] { return handOut(cache().CpuLanguageAbbr()); }); },
        [] { return host([] { return handOut(cache().CpuCountry()); }); },
        [] { return host([] { return handOut(cache().CpuCountryAbbr()); }); },
        [] { return host([] { return handOut(cache().BotVersion()); }); },
        // objCache: the state of a slot.
        [](int i) { return host([&] { return handOut(cache().BotProfile(i)); }); },
        [](int i) { return host([&] { return cache().BotUptime(i); }); },
        [](int i) { return host([&] { return cache().BotFlags(i); }); },
        [](int i) { return host([&] { return cache().BotPing(i); }); },
        [](int i) { return host([&] { return handOut(cache().BotStatstring(i)); }); },
        [](int i) { return host([&] { return handOut(cache().BotCdkeyStatus(i)); }); },
        [](int i, int* rank, const char** tag) {
            return host([&] {
                const QVariantMap info = cache().BotClanInfo(i).toMap();
                if (info.isEmpty()) return 0;
                *rank = info.value(QStringLiteral("Rank")).toInt();
                *tag = handOut(info.value(QStringLiteral("Tag")).toString());
                return 1;
            });
        },
        [](int i) { host([&] { cache().BotConnect(i); }); },
        [](int i) { host([&] { cache().BotDisconnect(i); }); },
        [](const char** profiles, int16_t* indexes, int capacity) {
            return host([&] {
                const QVariantMap loaded = cache().BotProfiles().toMap();
                const int count = loaded.value(QStringLiteral("Count")).toInt();
                const QVariantList names = loaded.value(QStringLiteral("Profiles")).toList();
                const QVariantList slots = loaded.value(QStringLiteral("Indexes")).toList();
                for (int n = 0; n < count && n < capacity; ++n) {
                    profiles[n] = handOut(names.value(n).toString());
                    indexes[n] = int16_t(slots.value(n).toInt());
                }
                return count;
            });
        },
        // objConfiguration.
        getConfiguration,
        setConfiguration,
        // objMusic.
        [] { return host([] { return handOut(music().GetTrack()); }); },
        [] { return host([] { return handOut(music().GetPlayer()); }); },
        [](const char* player) { host([&] { music().SetPlayer(text(player)); }); },
        [] { host([] { music().NextTrack(); }); },
        [] { host([] { music().PreviousTrack(); }); },
        [] { host([] { music().StopTrack(); }); },
        [] { host([] { music().PlayTrack(); }); },
        [] { host([] { music().PauseTrack(); }); },
        [] { return host([] { return int(music().PlayerOpened()); }); },
        [] { return host([] { return int(music().OpenPlayer()); }); },
        [] { return host([] { return int(music().ClosePlayer()); }); },
    };
    return table;
}
