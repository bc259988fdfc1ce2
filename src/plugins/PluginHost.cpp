#include "plugins/PluginHost.h"

#include "config/FileHandler.h"
#include "config/Folders.h"
#include "platform/ListModel.h"
#include "platform/MediaControl.h"
#include "plugins/PluginMainForm.h"
#include "plugins/ProcessMemory.h"
#include "plugins/objPlugin.h"
#include "presentation/ChatWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

namespace {

constexpr quint32 kRed = 255;

void redLine(const QString& text) {
    WriteChat(0, {{kRed, text}});
}

QString pluginsIni() {
    return GetSettingsPath() + QStringLiteral("Plugins.ini");
}

const QString kAutoLoad = QStringLiteral("AutoLoad");

// A loaded plug-in that registered for this kind of event. The senders build
// an event's arguments only for such a plug-in: frames and chat events come
// by the thousand, and mostly nobody listens.
bool takes(const PluginRecord& p, PluginHost::Flag kind) {
    return !p.Name.isEmpty() && (p.Flags & kind) && p.Object && !p.Object->spent();
}

} // namespace

PluginHost& PluginHost::instance() {
    static PluginHost host;
    return host;
}

PluginHost::PluginHost() : m_options(std::make_unique<ListModel>()) {
    m_plugins.emplace_back();
}

PluginHost::~PluginHost() = default;

QStringList PluginHost::PluginFiles() {
    const QDir folder(GetProgramFolder() + QStringLiteral("/Plugins"));
    QStringList names;
    for (const QFileInfo& file : folder.entryInfoList(
             {QStringLiteral("*.js"), QStringLiteral("*.so")}, QDir::Files, QDir::Name)) {
        if (!names.contains(file.completeBaseName())) names.append(file.completeBaseName());
    }
    return names;
}

bool PluginHost::AutoLoad(const QString& name) {
    return ReadIniNumber(pluginsIni(), kAutoLoad, name, 0) == 1;
}

bool PluginHost::setAutoLoad(const QString& name, bool on) {
    return WriteIni(pluginsIni(), kAutoLoad, name, on ? QStringLiteral("1") : QStringLiteral("0"));
}

bool PluginHost::isLoaded(const QString& name) const {
    for (const PluginRecord& record : m_plugins) {
        if (!name.isEmpty() && record.Name == name) return true;
    }
    return false;
}

int PluginHost::failed(int stage, const QString& line, const PluginCallError& error) {
    m_lastFailure = line + error.description();
    redLine(m_lastFailure);
    return stage;
}

QVariantList PluginHost::startupArguments(objPlugin* plugin) {
    return {QVariant::fromValue<QObject*>(&PluginMainForm::instance()),
            QVariant::fromValue<QObject*>(plugin)};
}

void PluginHost::ImportPlugins() {
    clear();
    objPlugin* plugin = nullptr;
    const QDir folder(GetProgramFolder() + QStringLiteral("/Plugins"));
    for (const QString& name : PluginFiles()) {
        if (!AutoLoad(name)) continue;
        const QStringList files = folder.entryList({name + QStringLiteral(".*")}, QDir::Files);
        WriteChat(0, Status::Warning,
                  QStringLiteral("- Importing plugin \"") + files.value(0, name) + u'"');
        try {
            if (!m_factory)
                throw PluginCallError(QStringLiteral("no loader for plug-ins is present"));
            std::shared_ptr<PluginObject> object = m_factory(name);
            add({name, 0, object});
            if (!plugin) plugin = new objPlugin(&PluginMainForm::instance());
            QVariantList args = startupArguments(plugin);
            object->call(QStringLiteral("Startup"), args);
        } catch (const PluginCallError& e) {
            redLine(QStringLiteral(" > Plugin Error on ") + name + QStringLiteral(": ") +
                    e.description() + u'.');
            return;
        }
    }
}

void PluginHost::RegisterPlugin(const QString& strName, quint32 lngFlags) {
    for (PluginRecord& record : m_plugins) {
        if (!strName.isEmpty() && record.Name == strName) record.Flags = lngFlags;
    }
    // The song playing now is the first news of a plug-in that asks for
    // media events, once its Startup is over.
    if (!(lngFlags & MediaEvents)) return;
    QTimer::singleShot(0, [strName] {
        for (const PluginRecord& p : PluginHost::instance().plugins()) {
            if (p.Name == strName && (p.Flags & MediaEvents))
                tellSong(p, MediaControl::instance().CurrentSong());
        }
    });
}

QString PluginHost::GetBaseName(const QString& Path) {
    const QString element = Path.section(u'\\', -1).section(u'/', -1);
    const qsizetype dot = element.lastIndexOf(u'.');
    return dot < 0 ? element : element.left(dot);
}

int PluginHost::StartPlugin(const QString& name) {
    std::shared_ptr<PluginObject> object;
    int slot = 0;
    try {
        if (!m_factory) throw PluginCallError(QStringLiteral("no loader for plug-ins is present"));
        object = m_factory(name);
        if (!object) throw PluginCallError(QStringLiteral("the plug-in made no object"));
        slot = add({name, 0, object});
    } catch (const PluginCallError& e) {
        return failed(1,
                      QStringLiteral("Error -> Could not start plugin, plugins() array is "
                                     "causing error - "),
                      e);
    }
    try {
        QVariantList args = startupArguments(new objPlugin(&PluginMainForm::instance()));
        object->call(QStringLiteral("Startup"), args);
    } catch (const PluginCallError& e) {
        // The record stays: the object was made.
        return failed(2,
                      QStringLiteral("Error -> Could not start plugin, cannot create plugin "
                                     "object - it is not registered properly - "),
                      e);
    }
    return slot > 0 ? 0 : 3;
}

int PluginHost::StopPlugin(const QString& name) {
    for (size_t i = 1; i < m_plugins.size(); ++i) {
        if (m_plugins[i].Name != name) continue;
        try {
            QVariantList args;
            if (m_plugins[i].Object) m_plugins[i].Object->call(QStringLiteral("Shutdown"), args);
        } catch (const PluginCallError& e) {
            return failed(2,
                          QStringLiteral("Error -> Could not stop plugin, the plugin is missing "
                                         "or has an error in the Shutdown() event - "),
                          e);
        }
        m_plugins.erase(m_plugins.begin() + qsizetype(i));
        return 0;
    }
    return 0;
}

void PluginHost::unloadSpentSoon() {
    if (m_unloadPending) return;
    m_unloadPending = true;
    // The senders walk the table while a plug-in runs: it changes after.
    QTimer::singleShot(0, [this] { unloadSpent(); });
}

void PluginHost::unloadSpent() {
    m_unloadPending = false;
    const auto why = [](const PluginObject& object) {
        return QStringLiteral(" is unloaded and its memory freed: ") + object.stoppedBecause() +
               u'.';
    };
    bool any = false;
    for (size_t i = 1; i < m_plugins.size();) {
        const PluginRecord& p = m_plugins[i];
        if (!p.Object || !p.Object->spent()) {
            ++i;
            continue;
        }
        redLine(QStringLiteral("Error -> Plugin ") + p.Name + why(*p.Object));
        m_plugins.erase(m_plugins.begin() + qsizetype(i));
        any = true;
    }
    if (m_script && m_script->spent()) {
        redLine(QStringLiteral("Error -> Script.txt") + why(*m_script) +
                QStringLiteral(" It runs again at the next start."));
        m_script.reset();
        any = true;
    }
    if (any) ProcessMemory::ReturnFreedMemory();
}

QString PluginHost::Description(const QString& name) {
    try {
        if (m_factory) {
            if (std::shared_ptr<PluginObject> object = m_factory(name)) {
                QVariantList args;
                return object->call(QStringLiteral("Description"), args).toString();
            }
        }
    } catch (const PluginCallError&) {
    }
    return QStringLiteral("Could not grab description from this plugin, the plugin does not "
                          "include a 'Description()' function.");
}

ListModel& PluginHost::options() {
    return *m_options;
}

void PluginHost::AddOption(const QString& strPlugin, const QString& strName, int bIconType,
                           int bArg) {
    ListItem item = ListItem::withText(strName);
    item.iconKey = QString::number(bIconType);
    item.tag = strPlugin + u'.' + QString::number(bArg);
    m_options->add(item);
}

bool PluginHost::DeleteOption(const QString& strPlugin, int bArg) {
    const QString tag = strPlugin + u'.' + QString::number(bArg);
    for (int i = 1; i <= m_options->count(); ++i) {
        if (m_options->item(i).tag != tag) continue;
        m_options->removeAt(i);
        return true;
    }
    return false;
}

void PluginHost::OptionClicked(const QString& tag) {
    const QStringList parts = tag.split(u'.');
    if (parts.size() != 2) return;
    for (const PluginRecord& record : m_plugins) {
        if (record.Name.isEmpty() || record.Name != parts[0] || !record.Object) continue;
        try {
            QVariantList args{parts[1].toInt()};
            record.Object->call(QStringLiteral("OptionClicked"), args);
        } catch (const PluginCallError& e) {
            redLine(QStringLiteral("Error -> plugin is missing the event OptionClicked() or it "
                                   "is not registered correctly - ") +
                    e.description());
        }
        return;
    }
}

int PluginHost::add(PluginRecord record) {
    for (size_t i = 1; i < m_plugins.size(); ++i) {
        if (m_plugins[i].Name.isEmpty()) {
            m_plugins[i] = std::move(record);
            return int(i);
        }
    }
    m_plugins.push_back(std::move(record));
    return int(m_plugins.size()) - 1;
}

void PluginHost::clear() {
    m_plugins.clear();
    m_plugins.emplace_back();
}

template <typename MakeArgs>
void PluginHost::sendSocketEvent(const QString& member, const MakeArgs& makeArgs) {
    for (const PluginRecord& p : m_plugins) {
        if (!takes(p, SocketEvents)) continue;
        QVariantList callArgs = makeArgs();
        try {
            p.Object->call(member, callArgs);
        } catch (const PluginCallError& e) {
            WriteChat(0, {{0xFF, QStringLiteral("Error -> a plugin call to ") + member +
                                     QStringLiteral("() raised error - ") + e.description()}});
            return;
        }
    }
}

void PluginHost::RunScript(int /*Index*/, const QString& sub, QVariantList args,
                           const QString& lineName) {
    if (!m_script || m_script->spent()) return;
    try {
        m_script->call(sub, args);
    } catch (const PluginCallError& e) {
        redLine(QStringLiteral("Error -> Script sub ") + (lineName.isEmpty() ? sub : lineName) +
                QStringLiteral(" raised error - ") + e.description());
    }
}

void PluginHost::DispatchSongChange(const QString& song) {
    if (song == m_lastSong) return;
    m_lastSong = song;
    for (const PluginRecord& p : m_plugins) {
        if (takes(p, MediaEvents) && !tellSong(p, song)) return;
    }
}

bool PluginHost::tellSong(const PluginRecord& p, const QString& song) {
    QVariantList args{song};
    try {
        p.Object->call(QStringLiteral("SongChange"), args);
    } catch (const PluginCallError& e) {
        redLine(QStringLiteral("Plugin [") + p.Name + QStringLiteral("] caused error: ") +
                e.description() + QStringLiteral(" on SongChange event."));
        return false;
    }
    return true;
}

void PluginHost::SendMediaEvent(const QString& member, const QVariantList& args) {
    for (const PluginRecord& p : m_plugins) {
        if (!takes(p, MediaEvents)) continue;
        QVariantList callArgs = args;
        try {
            p.Object->call(member, callArgs);
        } catch (const PluginCallError& e) {
            redLine(
                QStringLiteral("Error -> Plugin caused error on ") + member +
                QStringLiteral("() event, perhaps the plugin is missing this event handler? - ") +
                e.description());
            return;
        }
    }
}

void PluginHost::SocketConnect(int Index) {
    sendSocketEvent(QStringLiteral("SocketConnect"), [&] { return QVariantList{Index}; });
}

void PluginHost::SocketClose(int Index) {
    sendSocketEvent(QStringLiteral("SocketClose"), [&] { return QVariantList{Index}; });
}

void PluginHost::SocketError(int Index, int Number, const QString& Description) {
    sendSocketEvent(QStringLiteral("SocketError"), [&] {
        return QVariantList{Index, Number, Description, 0, QString(), QString(), 0, false};
    });
}

void PluginHost::PacketArrival(int Index, const QByteArray& Data) {
    sendSocketEvent(QStringLiteral("PacketArrival"), [&] { return QVariantList{Index, Data}; });
}

namespace {

struct ChatEventMember {
    int id;
    const char* member;
    enum Shape { Full, NameOnly, MessageOnly, Channel, Entered } shape;
};

// The plug-in member of each chat event and which arguments it takes.
constexpr ChatEventMember kChatEventMembers[] = {
    {1, "Event_UserPresent", ChatEventMember::Full},
    {2, "Event_UserJoin", ChatEventMember::Full},
    {3, "Event_UserLeave", ChatEventMember::NameOnly},
    {4, "Event_WhisperFrom", ChatEventMember::Full},
    {5, "Event_UserTalk", ChatEventMember::Full},
    {6, "Event_Broadcast", ChatEventMember::MessageOnly},
    {7, "Event_Channel", ChatEventMember::Channel},
    {9, "Event_UserUpdate", ChatEventMember::Full},
    {10, "Event_WhisperTo", ChatEventMember::Full},
    {13, "Event_ChannelFull", ChatEventMember::MessageOnly},
    {14, "Event_ChannelDoesNotExist", ChatEventMember::MessageOnly},
    {15, "Event_ChannelRestricted", ChatEventMember::MessageOnly},
    {18, "Event_Info", ChatEventMember::MessageOnly},
    {19, "Event_Error", ChatEventMember::MessageOnly},
    {23, "Event_UserEmote", ChatEventMember::Full},
    {253, "Event_EnteredChat", ChatEventMember::Entered},
    {254, "Event_PressedEnter", ChatEventMember::MessageOnly},
};

QVariantList chatEventArgs(ChatEventMember::Shape shape, int index, const QString& message,
                           const QString& username, qint32 flags, qint32 ping) {
    const qint16 slot = qint16(index);
    switch (shape) {
    case ChatEventMember::Full:
        return {slot, username, message, flags, ping};
    case ChatEventMember::NameOnly:
        return {slot, username};
    case ChatEventMember::MessageOnly:
        return {slot, message};
    case ChatEventMember::Channel:
        return {slot, message, flags};
    case ChatEventMember::Entered:
        return {slot, username, message};
    }
    return {};
}

} // namespace

void PluginHost::DispatchChatEvent(int BotIndex, int ID, const QString& Message,
                                   const QString& Username, qint32 Flags, qint32 Ping) {
    const ChatEventMember* event = nullptr;
    for (const ChatEventMember& e : kChatEventMembers) {
        if (e.id == ID) event = &e;
    }
    if (!event) return;
    sendChatEvent(ID, QLatin1StringView(event->member), [&] {
        return chatEventArgs(event->shape, BotIndex, Message, Username, Flags, Ping);
    });
}

void PluginHost::PressedEnter(int BotIndex, QString& Message) {
    sendChatEvent(
        254, QLatin1StringView("Event_PressedEnter"),
        [&] {
            return QVariantList{BotIndex, Message};
        },
        [&](const QVariantList& args) { Message = args.value(1).toString(); });
}

template <typename MakeArgs>
void PluginHost::sendChatEvent(int ID, QLatin1StringView member, const MakeArgs& makeArgs,
                               const std::function<void(const QVariantList&)>& takeBack) {
    for (const PluginRecord& p : m_plugins) {
        if (!takes(p, ChatEvents)) continue;
        QVariantList args = makeArgs();
        try {
            p.Object->call(QString(member), args);
        } catch (const PluginCallError& e) {
            WriteChat(0, {{0xFF, QStringLiteral("Error -> Plugin caused error for ") + p.Name +
                                     QStringLiteral(" ChatEvent(") + QString::number(ID) +
                                     QStringLiteral(") - ") + e.description()}});
            return;
        }
        if (takeBack) takeBack(args);
    }
}
