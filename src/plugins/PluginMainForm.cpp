#include "plugins/PluginMainForm.h"

#include "plugins/PluginHost.h"

PluginMainForm& PluginMainForm::instance() {
    static PluginMainForm form;
    return form;
}

void PluginMainForm::RegisterPlugin(const QString& strName, quint32 lngFlags) {
    PluginHost::instance().RegisterPlugin(strName, lngFlags);
}

QString PluginMainForm::GetBaseName(const QString& Path) const {
    return PluginHost::GetBaseName(Path);
}

void PluginMainForm::AddOption(const QString& strPlugin, const QString& strName, int bIconType,
                               int bArg) {
    PluginHost::instance().AddOption(strPlugin, strName, bIconType, bArg);
}

bool PluginMainForm::DeleteOption(const QString& strPlugin, int bArg) {
    return PluginHost::instance().DeleteOption(strPlugin, bArg);
}
