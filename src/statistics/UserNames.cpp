#include "statistics/UserNames.h"

QString ConvertUsername(const QString& Name, bool ToServer, int Index) {
    const qsizetype star = Name.indexOf(u'*');
    const QString account = star >= 0 ? Name.mid(star + 1) : Name;
    if (!ToServer)
        return account;
    (void)Index;
    return u'*' + account;
}
