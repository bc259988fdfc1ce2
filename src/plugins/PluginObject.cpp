#include "plugins/PluginObject.h"

#include "plugins/PluginHost.h"

void PluginObject::markSpent(const QString& because) {
    if (!spent()) PluginHost::instance().unloadSpentSoon();
    m_stopped = because;
}
