#pragma once

#include <QList>
#include <QString>

class ConfigWrapper;

// What a profile lacks to log on as it is set, told before any connection
// is tried: a retry cannot mend an empty setting, the user has to.
namespace LogonNeeds {

struct Need {
    QString prefix; // "[BNET] ", "[BNLS] " or "[BncsUtil] "
    QString text;   // names the setting and the command that sets it
};

// One entry per setting that stops the logon; none when it can go ahead.
QList<Need> Missing(const ConfigWrapper& config);

} // namespace LogonNeeds
