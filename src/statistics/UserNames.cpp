#include "statistics/UserNames.h"

#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"

QString ConvertUsername(const QString& Name, bool ToServer, int Index) {
    const qsizetype star = Name.indexOf(u'*');
    const QString account = star >= 0 ? Name.mid(star + 1) : Name;
    if (!ToServer) return account;
    if (Index == -1) return u'*' + account;
    // Only Diablo II realms want the star form.
    if (IsDiabloRealm(Bots(Index).Config.Client())) return u'*' + account;
    return account;
}

QString GetDisplayName(const QString& Name) {
    const QString plain = ConvertUsername(Name, false, -1);
    const QString alias = FindAlias(plain);
    if (!alias.isEmpty()) return alias;
    return SettingsWrapper::instance().HideChars() ? plain : Name;
}
