/* A Corvantide plug-in in C. Build it with
 *
 *     cc -shared -fPIC -fvisibility=hidden -I include -o hello.so examples/plugins/hello.c
 *
 * (the project's CMake build makes build/plugins/hello.so), copy hello.so to
 * the Plugins folder beside the program's files and turn it on in the Plugins
 * page or in Plugins.ini ([AutoLoad] hello=1).
 *
 * It greets who joins, counts the packets the bot receives and shows the count,
 * with the profile on screen and its channel, when its entry in the plug-in
 * list is clicked; a typed "gg" goes out as "good game, well played". */
#include "corvantide/plugin.h"

#include <stdio.h>
#include <string.h>

static const corvantide_host* host;
static unsigned long packets;

CORVANTIDE_EXPORT int Startup(corvantide_call* call) {
    host = call->host;
    host->RegisterPlugin("hello", CORVANTIDE_CHAT_EVENTS | CORVANTIDE_SOCKET_EVENTS);
    host->AddOption("hello", "Packets counted in C", 0, 1);
    return 0;
}

CORVANTIDE_EXPORT int Shutdown(corvantide_call* call) {
    (void)call;
    return 0;
}

CORVANTIDE_EXPORT int Description(corvantide_call* call) {
    snprintf(call->result, sizeof call->result, "Greets who joins and counts packets, in C.");
    return 0;
}

CORVANTIDE_EXPORT int OptionClicked(corvantide_call* call) {
    char line[256];
    int slot;
    if (call->argc < 1 || call->argv[0].number != 1) return 0;
    /* The main form and objCache, as a JavaScript plug-in has them. */
    slot = host->CurrentIndex();
    snprintf(line, sizeof line, "hello.so has counted %lu packets; on screen: %s in %s.",
             packets, slot > 0 ? host->BotProfile(slot) : "the console",
             slot > 0 ? host->GetConfiguration(slot, "Channel") : "-");
    host->WriteChat(0, 0x00FFFF, line);
    return 0;
}

/* PacketArrival: Index, Data. */
CORVANTIDE_EXPORT int PacketArrival(corvantide_call* call) {
    (void)call;
    ++packets;
    return 0;
}

/* Event_UserJoin: BotIndex, Username, Message, Flags, Ping. */
CORVANTIDE_EXPORT int Event_UserJoin(corvantide_call* call) {
    char line[256];
    if (call->argc < 2) {
        snprintf(call->error, sizeof call->error, "Event_UserJoin without a user");
        return 1;
    }
    snprintf(line, sizeof line, "Hello %s, greetings from C.", call->argv[1].text);
    host->AddQueue(call->argv[0].number, line);
    return 0;
}

/* Event_PressedEnter: BotIndex, Message. A text is rewritten within its
 * buffer, which has room to grow. */
CORVANTIDE_EXPORT int Event_PressedEnter(corvantide_call* call) {
    if (call->argc >= 2 && strcmp(call->argv[1].text, "gg") == 0)
        snprintf(call->argv[1].text, call->argv[1].text_size, "good game, well played");
    return 0;
}

/* The members of the kinds registered above that this plug-in has no use
 * for: each must exist, or its event is an error. */
#define NOTHING_TO_DO(member)                                                                      \
    CORVANTIDE_EXPORT int member(corvantide_call* call) {                                          \
        (void)call;                                                                                \
        return 0;                                                                                  \
    }
NOTHING_TO_DO(SocketConnect)
NOTHING_TO_DO(SocketClose)
NOTHING_TO_DO(SocketError)
NOTHING_TO_DO(Event_UserPresent)
NOTHING_TO_DO(Event_UserLeave)
NOTHING_TO_DO(Event_WhisperFrom)
NOTHING_TO_DO(Event_UserTalk)
NOTHING_TO_DO(Event_Broadcast)
NOTHING_TO_DO(Event_Channel)
NOTHING_TO_DO(Event_UserUpdate)
NOTHING_TO_DO(Event_WhisperTo)
NOTHING_TO_DO(Event_ChannelFull)
NOTHING_TO_DO(Event_ChannelDoesNotExist)
NOTHING_TO_DO(Event_ChannelRestricted)
NOTHING_TO_DO(Event_Info)
NOTHING_TO_DO(Event_Error)
NOTHING_TO_DO(Event_UserEmote)
NOTHING_TO_DO(Event_EnteredChat)
