/* A plug-in built against this bot's header, reaching the main form,
 * objConfiguration and objCache from Startup. */
#include "corvantide/plugin.h"

#include <stdio.h>

CORVANTIDE_EXPORT int Startup(corvantide_call* call) {
    const corvantide_host* host = call->host;
    char line[512];
    const int slot = host->LoadProfile("Stored");
    snprintf(line, sizeof line, "reach.so found Stored in slot %d, trigger %s, processor %s", slot,
             host->GetConfiguration(slot, "Trigger"), host->CpuName());
    host->WriteChat(slot, 0x00FF00, line);
    return 0;
}
