#pragma once

#include "plugins/PluginObject.h"
#include "plugins/ScriptWatchdog.h"

#include <QLibrary>

// A plug-in built as a shared object with the C interface of
// include/corvantide/plugin.h. Its members are exported functions of one
// shape; the arguments go by reference and come back changed. A plug-in
// built against a newer interface than the bot's is refused as it loads.
class SharedObjectPlugin : public PluginObject {
public:
    // Throws PluginCallError when the file does not load or is refused.
    explicit SharedObjectPlugin(const QString& path);
    ~SharedObjectPlugin() override;

    QVariant call(const QString& member, QVariantList& args) override;

private:
    QLibrary m_library;
    ScriptFootprint m_footprint;
};
