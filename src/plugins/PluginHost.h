#pragma once

#include "plugins/PluginObject.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

class ListModel;
class objPlugin;

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

    // Makes a plug-in's object by its base name, or throws PluginCallError.
    // The loader of plug-in files sets it; until then nothing can start.
    using Factory = std::function<std::shared_ptr<PluginObject>(const QString& name)>;
    void setFactory(Factory factory) { m_factory = std::move(factory); }
    // Whether plug-ins can be started here: only a running bot has a loader.
    bool canStart() const { return bool(m_factory); }
    // The red line of the last start or stop that failed.
    const QString& lastFailure() const { return m_lastFailure; }

    // The base names of the plug-in files in the Plugins folder of the
    // program, in name order.
    static QStringList PluginFiles();
    // Whether Plugins.ini asks to load the plug-in at start: only 1 does.
    static bool AutoLoad(const QString& name);
    // False when Plugins.ini could not be written.
    static bool setAutoLoad(const QString& name, bool on);
    bool isLoaded(const QString& name) const;
    // At start: empties the table and starts every plug-in Plugins.ini
    // loads, all sharing one objPlugin. The first that fails ends the import.
    void ImportPlugins();
    void RegisterPlugin(const QString& strName, quint32 lngFlags);
    // The last element of Path, cut before its last dot.
    static QString GetBaseName(const QString& Path);
    // Makes the plug-in, puts it in the table and calls its Startup. 0 when it
    // runs; otherwise the stage that failed, with a red console line.
    int StartPlugin(const QString& name);
    // Calls its Shutdown and takes it out of the table; the later plug-ins
    // move down one slot. 0 also when no plug-in has that name.
    int StopPlugin(const QString& name);
    // Once the event in progress is over: every plug-in, and the script,
    // stopped for good for its memory is unloaded with a red line naming it,
    // and the memory it held is handed back to the system.
    void unloadSpentSoon();
    // What a separate object of the plug-in says of itself; the words of the
    // Plugins page when it cannot.
    QString Description(const QString& name);

    // The entries plug-ins add to the plug-in list, tagged "plugin.arg".
    ListModel& options();
    void AddOption(const QString& strPlugin, const QString& strName, int bIconType, int bArg);
    // True when an entry with that very tag was there to remove.
    bool DeleteOption(const QString& strPlugin, int bArg);
    // The entry of that tag was clicked: its plug-in hears OptionClicked.
    void OptionClicked(const QString& tag);

    void SocketConnect(int Index);
    void SocketClose(int Index);
    void SocketError(int Index, int Number, const QString& Description);
    void PacketArrival(int Index, const QByteArray& Data);
    // The user's script, when one is loaded; its subs are called by name.
    void setScript(std::shared_ptr<PluginObject> script) { m_script = std::move(script); }
    // Runs a script sub. An error is one red console line naming `lineName`
    // (the sub itself when empty); the caller's work goes on.
    void RunScript(int Index, const QString& sub, QVariantList args, const QString& lineName = {});

    // The current song, told to the plug-ins that take media events when it
    // differs from the last one told.
    void DispatchSongChange(const QString& song);
    // A media event (OpenPlayer, NextSong, ...) to the plug-ins that take
    // them; the first that fails ends the round with a red console line.
    void SendMediaEvent(const QString& member, const QVariantList& args);

    void DispatchChatEvent(int BotIndex, int ID, const QString& Message, const QString& Username,
                           qint32 Flags, qint32 Ping);
    // The line about to leave a slot, offered to every plug-in that takes chat
    // events; each may change it, and an emptied line is not sent.
    void PressedEnter(int BotIndex, QString& Message);

private:
    PluginHost();
    ~PluginHost();
    // Calls `member` on every plug-in with the socket-event flag, each with
    // fresh arguments from `makeArgs`, writing the error line of the first
    // that raises and stopping there.
    // (Templates, so that no call on the chat path allocates a closure.)
    template <typename MakeArgs>
    void sendSocketEvent(const QString& member, const MakeArgs& makeArgs);
    // Calls `member` on every plug-in with the chat-event flag, each with fresh
    // arguments from `makeArgs`; `takeBack` sees what a plug-in left in them.
    template <typename MakeArgs>
    void sendChatEvent(int ID, QLatin1StringView member, const MakeArgs& makeArgs,
                       const std::function<void(const QVariantList&)>& takeBack = {});

    // SongChange to one plug-in; false, with the red line, when it failed.
    static bool tellSong(const PluginRecord& p, const QString& song);
    // What Startup receives: the main form and the given objPlugin.
    static QVariantList startupArguments(objPlugin* plugin);
    // Shows a red console line and gives the stage of a failed start or stop.
    int failed(int stage, const QString& line, const PluginCallError& error);

    void unloadSpent();

    std::vector<PluginRecord> m_plugins;
    bool m_unloadPending = false;
    QString m_lastFailure;
    QString m_lastSong;
    std::shared_ptr<PluginObject> m_script;
    Factory m_factory;
    std::unique_ptr<ListModel> m_options;
};
