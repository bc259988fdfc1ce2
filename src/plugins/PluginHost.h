#pragma once

#include "plugins/PluginObject.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

struct PluginRecord {
    QString Name;
    quint32 Flags = 0;
    std::shared_ptr<PluginObject> Object;
};

// The table of loaded plug-ins and the senders of events to them. Slot 0 stays
// empty; a slot without a name is skipped. A plug-in that raises an error ends
// that round: the plug-ins behind it do not hear of the event.
class PluginHost {
public:
    enum Flag : quint32 { ChatEvents = 1, SocketEvents = 2, MediaEvents = 4 };

    static PluginHost& instance();

    std::vector<PluginRecord>& plugins() { return m_plugins; }
    // Adds a plug-in in the first free slot; returns the slot.
    int add(PluginRecord record);
    void clear();

    void SocketConnect(int Index);
    void SocketClose(int Index);
    void SocketError(int Index, int Number, const QString& Description);
    void PacketArrival(int Index, const QByteArray& Data);
    // The user's script, when one is loaded; its subs are called by name.
    void setScript(std::shared_ptr<PluginObject> script) { m_script = std::move(script); }
    // Runs a script sub. An error is one red line naming `lineName` (the sub
    // itself when empty); the caller's work goes on.
    void RunScript(int Index, const QString& sub, QVariantList args, const QString& lineName = {});

    void DispatchChatEvent(int BotIndex, int ID, const QString& Message, const QString& Username,
                           qint32 Flags, qint32 Ping);
    // The line about to leave a slot, offered to every plug-in that takes chat
    // events; each may change it, and an emptied line is not sent.
    void PressedEnter(int BotIndex, QString& Message);

private:
    PluginHost();
    // Calls `member` on every plug-in with `flag`, writing the error line of
    // the first that raises and stopping there.
    void sendSocketEvent(const QString& member, QVariantList args);
    // Calls `member` on every plug-in with the chat-event flag, each with fresh
    // arguments from `makeArgs`; `takeBack` sees what a plug-in left in them.
    void sendChatEvent(int ID, const QString& member, const std::function<QVariantList()>& makeArgs,
                       const std::function<void(const QVariantList&)>& takeBack = {});

    std::vector<PluginRecord> m_plugins;
    std::shared_ptr<PluginObject> m_script;
};
