#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

class BotElement;
class ChatDocument;
class ListModel;
class SocketControl;
struct LogonRecord;

// The profile slots of the process. Slot 0 is the console, with a chat view
// and no connection; slots 1 and up hold profiles. Numbers are dense, a slot
// keeps its number for the whole run, and an unloaded slot stays allocated and
// is handed out again.
class SlotTable : public QObject {
    Q_OBJECT
public:
    static SlotTable& instance();
    // Throws the table away and starts again with the console alone (tests).
    static void reset();

    int highestIndex() const { return int(m_slots.size()) - 1; }
    BotElement& bot(int index);
    LogonRecord& logon(int index);
    SocketControl& bnet(int index);
    SocketControl& bnls(int index);
    ChatDocument& chat(int index);
    ChatDocument& whisper(int index);
    ListModel& users(int index);
    ListModel& friends(int index);
    ListModel& clan(int index);

    int CurrentIndex() const { return m_current; }
    void SelectBot(int Index);
    // Returns the slot the profile went into.
    int LoadProfile(const QString& Name);
    // False, after the warning, when no slot holds the profile.
    bool UnloadProfile(const QString& Name);
    // Refreshes the menu of profiles that are stored but not loaded.
    void DisplayProfiles();
    QStringList unloadedProfiles() const;
    // Starts a connection of a slot, locally or through BNLS by its product.
    void ConnectBot(int Index);
    // Connects to "host" on the default port, or to "host:port".
    static void connectTo(SocketControl& socket, const QString& server, quint16 defaultPort);
    // The slot holding a profile of that name, 0 if none.
    int findProfile(const QString& Name) const;
    // The slot's profile took a new name in the store: the slot keeps its
    // connection and reads its settings under the new name from now on.
    void renameSlotProfile(int index, const QString& Name);

    // Set once the start-up sequence has run; profiles loaded before that do
    // not refresh the menus one by one.
    bool IsLoaded = false;
    // When the watchdog last started a connection, over all slots.
    quint32 LastReconnect = 0;

    void notifyClanTag(int index) { Q_EMIT clanTagChanged(index); }
    void notifyChannelList(int index) { Q_EMIT channelListChanged(index); }
    void refillSendBox(int index, const QString& text) { Q_EMIT sendBoxRefill(index, text); }
    // Hands a looked-up profile (sex, location, description) to whoever shows
    // it; false when nobody does.
    bool showProfile(int index, const QString& account, const QStringList& values);

Q_SIGNALS:
    void slotCreated(int index);
    void slotLoaded(int index);
    void slotUnloaded(int index);
    void slotRenamed(int index);
    void activeSlotChanged(int index);
    void profilesChanged();
    void clanTagChanged(int index);
    void channelListChanged(int index);
    // A question or warning that the window shows as a box and a headless run
    // prints.
    void messageBox(const QString& title, const QString& text);
    // A line that could not go is handed back to the send box of the slot.
    void sendBoxRefill(int index, const QString& text);
    void profileReceived(int index, const QString& account, const QStringList& values);

private:
    struct Slot;
    SlotTable();
    ~SlotTable() override;
    Slot& slot(int index);
    int addSlot();
    void wireSockets(Slot& s, int index);

    std::vector<std::unique_ptr<Slot>> m_slots;
    int m_current = 0;
};

// The spelling the protocol code uses: the state and controls of slot i.
BotElement& Bots(int i);
LogonRecord& Logons(int i);
SocketControl& wsBNET(int i);
SocketControl& wsBNLS(int i);
ChatDocument& rtbChat(int i);
ChatDocument& rtbWhisper(int i);
ListModel& lvUsers(int i);
ListModel& lvFriends(int i);
ListModel& lvClan(int i);
