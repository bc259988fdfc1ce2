#pragma once

struct corvantide_host;

// The functions C plug-ins call back: the main form, objPlugin, objCache,
// objConfiguration and objMusic, as include/corvantide/plugin.h lays them out.
// None lets an exception out into the plug-in: a failure is an empty answer.
const corvantide_host& NativeHostTable();
// The texts the table handed out are no longer used: the outermost member
// call has returned.
void ReleaseHandedOutTexts();
