/* A plug-in built against a header from after this bot: its mark claims an
 * interface the bot does not have. */
#define CORVANTIDE_NO_ABI_MARK
#include "corvantide/plugin.h"

CORVANTIDE_EXPORT const corvantide_abi corvantide_plugin_abi = {
    CORVANTIDE_PLUGIN_VERSION + 1, sizeof(corvantide_host) + sizeof(void*)};

CORVANTIDE_EXPORT int Startup(corvantide_call* call) {
    (void)call;
    return 0;
}
