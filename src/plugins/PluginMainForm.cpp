#include "plugins/PluginMainForm.h"

#include "chat/BotElement.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "session/SlotTable.h"

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

int PluginMainForm::CurrentIndex() const {
    return SlotTable::instance().CurrentIndex();
}

void PluginMainForm::SelectBot(int Index) {
    SlotTable& table = SlotTable::instance();
    if (Index >= 0 && Index <= table.highestIndex()) table.SelectBot(Index);
}

int PluginMainForm::LoadProfile(const QString& Name) {
    SlotTable& table = SlotTable::instance();
    if (const int loaded = table.findProfile(Name)) return loaded;
    for (const QString& stored : table.unloadedProfiles()) {
        if (stored.compare(Name, Qt::CaseInsensitive) == 0) return table.LoadProfile(stored);
    }
    return 0;
}

bool PluginMainForm::UnloadProfile(const QString& Name) {
    SlotTable& table = SlotTable::instance();
    return table.findProfile(Name) && table.UnloadProfile(Name);
}

void PluginMainForm::ConnectBot(int Index) {
    SlotTable& table = SlotTable::instance();
    if (Index >= 1 && Index <= table.highestIndex() && Bots(Index).IsLoaded)
        table.ConnectBot(Index);
}

void PluginMainForm::DisplayProfiles() {
    SlotTable::instance().DisplayProfiles();
}

void PluginMainForm::WriteChat(int Index, quint32 Colour, const QString& Text) {
    if (Index < 0 || Index > SlotTable::instance().highestIndex()) return;
    ::WriteChat(Index, {{Colour == 0 ? 0xFFFFFFu : Colour, Text}});
}

QString PluginMainForm::ThemePath() const {
    return ::ThemePath();
}

void PluginMainForm::LoadSettingsFile(const QString& Name) {
    LoadTheme(Name);
}

void PluginMainForm::guiReset() {
    Q_EMIT resetRequested();
}

void PluginMainForm::SelectList(const QString& List) {
    Q_EMIT listRequested(List);
}

void PluginMainForm::DisplayChannels() {
    Q_EMIT channelsRequested();
}

void PluginMainForm::LoadFonts() {
    Q_EMIT fontsRequested();
}
