#include "session/SlotTable.h"

#include "chat/BotElement.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/SocketControl.h"
#include "session/LogonRecord.h"

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
    if (!g_table)
        g_table = new SlotTable();
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
    m_slots.back()->bot.setIndex(index);
    Q_EMIT slotCreated(index);
    return index;
}

SlotTable::Slot& SlotTable::slot(int index) {
    return *m_slots.at(size_t(index));
}

BotElement& SlotTable::bot(int index) { return slot(index).bot; }
LogonRecord& SlotTable::logon(int index) { return slot(index).logon; }
SocketControl& SlotTable::bnet(int index) { return slot(index).bnet; }
SocketControl& SlotTable::bnls(int index) { return slot(index).bnls; }
ChatDocument& SlotTable::chat(int index) { return slot(index).chat; }
ChatDocument& SlotTable::whisper(int index) { return slot(index).whisper; }
ListModel& SlotTable::users(int index) { return slot(index).users; }
ListModel& SlotTable::friends(int index) { return slot(index).friends; }
ListModel& SlotTable::clan(int index) { return slot(index).clan; }

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
    if (index == 0)
        index = addSlot();
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
    if (IsLoaded)
        DisplayProfiles();
    return index;
}

int SlotTable::findProfile(const QString& Name) const {
    for (int i = 1; i <= highestIndex(); ++i) {
        if (m_slots[size_t(i)]->bot.Profile() == Name)
            return i;
    }
    return 0;
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

void SlotTable::DisplayProfiles() {
    Q_EMIT profilesChanged();
}

BotElement& Bots(int i) { return SlotTable::instance().bot(i); }
LogonRecord& Logons(int i) { return SlotTable::instance().logon(i); }
SocketControl& wsBNET(int i) { return SlotTable::instance().bnet(i); }
SocketControl& wsBNLS(int i) { return SlotTable::instance().bnls(i); }
ChatDocument& rtbChat(int i) { return SlotTable::instance().chat(i); }
ChatDocument& rtbWhisper(int i) { return SlotTable::instance().whisper(i); }
ListModel& lvUsers(int i) { return SlotTable::instance().users(i); }
ListModel& lvFriends(int i) { return SlotTable::instance().friends(i); }
ListModel& lvClan(int i) { return SlotTable::instance().clan(i); }
