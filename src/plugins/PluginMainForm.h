#pragma once

#include <QObject>

// The main form as plug-ins receive it at Startup: the operations they may
// call back, the same with a window and without one. Those that only change
// what the window shows are asked of it through the signals below; a run
// without a window has nothing to redraw.
class PluginMainForm : public QObject {
    Q_OBJECT
public:
    static PluginMainForm& instance();

    // Sets what the plug-in named strName (exactly) is sent: 1 chat events,
    // 2 socket events, 4 media events.
    Q_INVOKABLE void RegisterPlugin(const QString& strName, quint32 lngFlags);
    // The last element of Path, cut before its last dot.
    Q_INVOKABLE QString GetBaseName(const QString& Path) const;
    // An entry of the plug-in list, tagged "strPlugin.bArg".
    Q_INVOKABLE void AddOption(const QString& strPlugin, const QString& strName, int bIconType,
                               int bArg);
    Q_INVOKABLE bool DeleteOption(const QString& strPlugin, int bArg);

    // The slots: the one on screen, choosing it, loading a stored profile
    // (its slot, or 0 when no profile has that name), unloading one (false
    // when none is loaded by that name) and connecting one.
    Q_INVOKABLE int CurrentIndex() const;
    Q_INVOKABLE void SelectBot(int Index);
    Q_INVOKABLE int LoadProfile(const QString& Name);
    Q_INVOKABLE bool UnloadProfile(const QString& Name);
    Q_INVOKABLE void ConnectBot(int Index);
    Q_INVOKABLE void DisplayProfiles();
    // One line in the chat view of slot Index through the chat writer (with
    // its timestamp, and into the log); colour 0 is white.
    Q_INVOKABLE void WriteChat(int Index, quint32 Colour, const QString& Text);

    // The themes: their folder, and loading one by name.
    Q_INVOKABLE QString ThemePath() const;
    Q_INVOKABLE void LoadSettingsFile(const QString& Name);

    // The window: redraw the bars, show a list ("Users", "Friends" or
    // "Clan"), refill the channels menu, apply the font settings.
    Q_INVOKABLE void guiReset();
    Q_INVOKABLE void SelectList(const QString& List);
    Q_INVOKABLE void DisplayChannels();
    Q_INVOKABLE void LoadFonts();

Q_SIGNALS:
    void resetRequested();
    void listRequested(const QString& list);
    void channelsRequested();
    void fontsRequested();

private:
    PluginMainForm() = default;
};
