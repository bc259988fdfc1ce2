#pragma once

#include <QObject>

// The main form as plug-ins receive it at Startup: the operations they may
// call back, the same with a window and without one.
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

private:
    PluginMainForm() = default;
};
