/* Corvantide plug-ins in C: the interface between the bot and a shared object
 * Plugins/<Name>.so in the program's folder.
 *
 * The bot looks up the plug-in's members by name, the same names a
 * JavaScript plug-in uses: Startup, Shutdown, Description, OptionClicked,
 * SocketConnect, SocketClose, SocketError, PacketArrival, the media members
 * (SongChange, OpenPlayer, ClosePlayer, NextSong, PreviousSong, PlaySong,
 * PauseSong, StopSong) and the Event_... members (see docs/scripting.md for
 * when each is called and with which arguments). Every member has one shape:
 *
 *     CORVANTIDE_EXPORT int Event_UserTalk(corvantide_call* call);
 *
 * It returns 0 when it did its work. A member that fails writes why into
 * call->error and returns anything else; the bot shows that as a red console
 * line, as it does for a member the plug-in lacks.
 *
 * Arguments come in call->argv, in the order of the tables in
 * docs/scripting.md. Every argument is passed by reference: a member may change
 * a number in place and rewrite a text within its buffer (text_size bytes,
 * NUL included); the bot takes the changed values back. Startup's two
 * arguments (the main form and objPlugin) are empty; their operations are the
 * functions of call->host, which every call carries.
 *
 * Everything runs on the bot's one thread, inside the event that calls the
 * member, and a member that runs too long holds the bot up. Texts the host
 * gives back are valid until the next call into the host.
 */
#ifndef CORVANTIDE_PLUGIN_H
#define CORVANTIDE_PLUGIN_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CORVANTIDE_PLUGIN_VERSION 1

#define CORVANTIDE_EXPORT __attribute__((visibility("default")))

/* What RegisterPlugin asks for. */
#define CORVANTIDE_CHAT_EVENTS 1u
#define CORVANTIDE_SOCKET_EVENTS 2u
#define CORVANTIDE_MEDIA_EVENTS 4u

/* The operations of the main form and of objPlugin that a plug-in may call. */
typedef struct corvantide_host {
    int version; /* CORVANTIDE_PLUGIN_VERSION */

    /* The main form. */
    void (*RegisterPlugin)(const char* strName, uint32_t lngFlags);
    void (*AddOption)(const char* strPlugin, const char* strName, int bIconType, int bArg);
    int (*DeleteOption)(const char* strPlugin, int bArg);

    /* objPlugin. AddText writes one line of `count` parts, texts[i] in
     * colours[i] (0xBBGGRR, 0 is white); Index 0 is the console. */
    int (*BotIndex)(void);
    void (*AddText)(int Index, int count, const uint32_t* colours, const char* const* texts);
    void (*AddQueue)(int Index, const char* Text);

    /* objCache: the state of slot i. */
    int (*BotOnline)(int i);
    const char* (*BotName)(int i);
    const char* (*BotChannel)(int i);
    int (*UserCount)(int i);
} corvantide_host;

/* One argument. Numbers (slots, flags, pings, truth values) are in number;
 * texts in text, UTF-8; a packet's bytes in data. */
typedef struct corvantide_value {
    int32_t number;
    char* text;
    size_t text_size;
    const unsigned char* data;
    size_t data_length;
} corvantide_value;

typedef struct corvantide_call {
    const corvantide_host* host;
    int argc;
    corvantide_value* argv;
    char result[1024]; /* what Description answers, NUL-terminated UTF-8 */
    char error[256];   /* why a member failed */
} corvantide_call;

typedef int (*corvantide_member)(corvantide_call* call);

#ifdef __cplusplus
}
#endif

#endif
