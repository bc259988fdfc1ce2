#include "session/SlotTable.h"

#include "chat/BotElement.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "session/GuardedStep.h"
#include "session/LogonRecord.h"

#include <QMetaMethod>

struct SlotTable::Slot {
    BotElement bot;
    LogonRecord logon;
    SocketControl bnet;
    SocketControl bnls;
    ChatDocument chat;
    ChatDocument whisper;
    ListModel users;
    ListModel friends;
    ListModel clan;
};

namespace {
SlotTable* g_table = nullptr;
}

SlotTable& SlotTable::instance() {
    if (!g_table) g_table = new SlotTable();
    return *g_table;
}

void SlotTable::reset() {
    delete g_table;
    g_table = new SlotTable();
}

SlotTable::SlotTable() {
    addSlot();
}

SlotTable::~SlotTable() = default;

int SlotTable::addSlot() {
    m_slots.push_back(std::make_unique<Slot>());
    const int index = highestIndex();
    Slot& s = *m_slots.back();
    s.bot.setIndex(index);
    wireSockets(s, index);
    Q_EMIT slotCreated(index);
    return index;
}

void SlotTable::wireSockets(Slot& s, int index) {
    ConnectionWrapper& c = s.bot.Connection;
    // A socket event that fails ends there, with a line; the slot hears the
    // next one.
    const auto guarded = [this, index](const char* what, auto step) {
        return [this, index, what, step](auto&&... args) {
            RunGuarded(
                [&] { return bot(index).Profile() + QStringLiteral(" - ") + QLatin1String(what); },
                [&] { step(args...); });
        };
    };
    connect(&s.bnet, &SocketControl::connected, this,
            guarded("connect to Battle.net", [&c, index] { c.wsBNET_Connect(index); }));
    connect(&s.bnet, &SocketControl::dataArrival, this,
            guarded("data from Battle.net", [&c, index](qint64) { c.wsBNET_DataArrival(index); }));
    connect(&s.bnet, &SocketControl::closed, this,
            guarded("close of Battle.net", [&c, index] { c.wsBNET_Close(index); }));
    connect(&s.bnet, &SocketControl::error, this,
            guarded("error of Battle.net", [&c, index](int number, const QString& text) {
                c.wsBNET_Error(index, number, text);
            }));
    connect(&s.bnls, &SocketControl::connected, this,
            guarded("connect to BNLS", [&c, index] { c.wsBNLS_Connect(index); }));
    connect(&s.bnls, &SocketControl::dataArrival, this,
            guarded("data from BNLS", [&c, index](qint64) { c.wsBNLS_DataArrival(index); }));
    connect(&s.bnls, &SocketControl::closed, this,
            guarded("close of BNLS", [&c, index] { c.wsBNLS_Close(index); }));
    connect(&s.bnls, &SocketControl::error, this,
            guarded("error of BNLS", [&c, index](int number, const QString& text) {
                c.wsBNLS_Error(index, number, text);
            }));
}

SlotTable::Slot& SlotTable::slot(int index) {
    return *m_slots.at(size_t(index));
}

BotElement& SlotTable::bot(int index) {
    return slot(index).bot;
}
LogonRecord& SlotTable::logon(int index) {
    return slot(index).logon;
}
SocketControl& SlotTable::bnet(int index) {
    return slot(index).bnet;
}
SocketControl& SlotTable::bnls(int index) {
    return slot(index).bnls;
}
ChatDocument& SlotTable::chat(int index) {
    return slot(index).chat;
}
ChatDocument& SlotTable::whisper(int index) {
    return slot(index).whisper;
}
ListModel& SlotTable::users(int index) {
    return slot(index).users;
}
ListModel& SlotTable::friends(int index) {
    return slot(index).friends;
}
ListModel& SlotTable::clan(int index) {
    return slot(index).clan;
}

void SlotTable::SelectBot(int Index) {
    m_current = Index;
    BotElement& b = bot(Index);
    b.IsActive = false;
    b.LastActive = 0;
    Q_EMIT activeSlotChanged(Index);
}

int SlotTable::LoadProfile(const QString& Name) {
    int index = 0;
    for (int i = 1; i <= highestIndex(); ++i) {
        if (!bot(i).IsLoaded) {
            index = i;
            break;
        }
    }
    if (index == 0) index = addSlot();
    Slot& s = slot(index);
    s.bot.userClear();
    s.bot.IsLoaded = true;
    s.bot.setOnline(false);
    s.bot.setIndex(index);
    s.bot.setProfile(Name);
    s.bnet.Tag = Name;
    s.bnls.Tag = Name;
    s.chat.Tag = Name;
    s.whisper.Tag = Name;
    s.clan.Tag = Name;
    s.users.Tag = Name;
    s.friends.Tag = Name;
    s.chat.clear();
    s.clan.clear();
    s.users.clear();
    s.friends.clear();
    Q_EMIT slotLoaded(index);
    if (IsLoaded) DisplayProfiles();
    return index;
}

int SlotTable::findProfile(const QString& Name) const {
    for (int i = 1; i <= highestIndex(); ++i) {
        // Profile names are keys of the store, which knows no case; a rename
        // in other case leaves the store's spelling behind the slot's.
        if (m_slots[size_t(i)]->bot.Profile().compare(Name, Qt::CaseInsensitive) == 0) return i;
    }
    return 0;
}

void SlotTable::renameSlotProfile(int index, const QString& Name) {
    Slot& s = slot(index);
    s.bot.Config.Profile = Name;
    for (auto* tag : {&s.bnet.Tag, &s.bnls.Tag, &s.chat.Tag, &s.whisper.Tag, &s.clan.Tag,
                      &s.users.Tag, &s.friends.Tag})
        *tag = Name;
    Q_EMIT slotRenamed(index);
}

bool SlotTable::UnloadProfile(const QString& Name) {
    const int index = Name.isEmpty() ? 0 : findProfile(Name);
    if (index == 0) {
        Q_EMIT messageBox(QStringLiteral("Corvantide"),
                          QStringLiteral("Error occurred, ") + Name +
                              QStringLiteral(" was not found in memory."));
        return false;
    }
    Slot& s = slot(index);
    s.bot.setProfile(QString());
    s.bot.IsLoaded = false;
    s.bot.setOnline(false);
    s.bot.userClear();
    s.bnet.Close();
    s.chat.clear();
    s.whisper.clear();
    s.clan.clear();
    s.users.clear();
    s.friends.clear();
    Q_EMIT slotUnloaded(index);
    DisplayProfiles();
    return true;
}

void SlotTable::connectTo(SocketControl& socket, const QString& server, quint16 defaultPort) {
    QString host = server.trimmed();
    quint16 port = defaultPort;
    const qsizetype colon = host.lastIndexOf(u':');
    if (colon > 0) {
        bool ok = false;
        const uint given = host.mid(colon + 1).toUInt(&ok);
        if (ok && given > 0 && given <= 65535) {
            port = quint16(given);
            host.truncate(colon);
        }
    }
    socket.Connect(host, port);
}

void SlotTable::ConnectBot(int Index) {
    BotElement& b = bot(Index);
    // A connect of the user's takes the place of a try that was waiting.
    b.Reconnect.cancel();
    if (!b.Connection.ClearVariables(Index)) return;
    b.LastConnect = GetTickCount();
    logon(Index).AwaitingBnls = false;
    if (SettingsWrapper::instance().LocalHashing() && CanHashLocally(b.Config.Client())) {
        WriteChat(Index, Status::Information,
                  QStringLiteral("[BNET] Connecting to Battle.net gateway.."));
        bnet(Index).Close();
        connectTo(bnet(Index), b.Config.Server(), 6112);
    } else {
        WriteChat(Index, Status::Information, QStringLiteral("[BNLS] Connecting to BNLS host.."));
        bnls(Index).Close();
        connectTo(bnls(Index), b.Config.ServerBNLS(), 9367);
    }
}

QStringList SlotTable::unloadedProfiles() const {
    QStringList names;
    RegistryWrapper::instance().EnumKeys(SettingsWrapper::RootKey() + QStringLiteral("Profiles"),
                                         names);
    QStringList unloaded;
    for (const QString& name : names) {
        if (findProfile(name) == 0) unloaded << name;
    }
    return unloaded;
}

void SlotTable::DisplayProfiles() {
    Q_EMIT profilesChanged();
}

BotElement& Bots(int i) {
    return SlotTable::instance().bot(i);
}
LogonRecord& Logons(int i) {
    return SlotTable::instance().logon(i);
}
SocketControl& wsBNET(int i) {
    return SlotTable::instance().bnet(i);
}
SocketControl& wsBNLS(int i) {
    return SlotTable::instance().bnls(i);
}
ChatDocument& rtbChat(int i) {
    return SlotTable::instance().chat(i);
}
ChatDocument& rtbWhisper(int i) {
    return SlotTable::instance().whisper(i);
}
ListModel& lvUsers(int i) {
    return SlotTable::instance().users(i);
}
ListModel& lvFriends(int i) {
    return SlotTable::instance().friends(i);
}
ListModel& lvClan(int i) {
    return SlotTable::instance().clan(i);
}

bool SlotTable::showProfile(int index, const QString& account, const QStringList& values) {
    if (!isSignalConnected(QMetaMethod::fromSignal(&SlotTable::profileReceived))) return false;
    Q_EMIT profileReceived(index, account, values);
    return true;
}
