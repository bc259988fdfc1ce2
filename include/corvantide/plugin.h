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
 * arguments (the main form and objPlugin) are empty; their operations, and
 * those of objCache, objConfiguration and objMusic, are the functions of
 * call->host, which every call carries.
 *
 * Versions. Including this header marks the plug-in with the interface it was
 * built against (corvantide_plugin_abi below). A bot loads a plug-in built
 * against its own interface or an older one: the table it hands over only
 * grows at its end, so an older plug-in finds every function where it
 * expects it. A plug-in built against a newer interface than the bot's is
 * refused with a console line. A plug-in that wants to run on older bots too
 * may leave out the mark (define CORVANTIDE_NO_ABI_MARK; it then counts as
 * version 1) and test host->version before it uses a later function.
 *
 * Everything runs on the bot's one thread, inside the event that calls the
 * member, and a member that runs too long holds the bot up. Texts the host
 * gives back are valid until the member that asked for them returns. While a
 * member runs, an allocation (malloc, calloc, realloc) that would take the
 * plug-in past the bot's ScriptMemoryLimit returns NULL, and the plug-in is
 * unloaded when the member returns.
 */
#ifndef CORVANTIDE_PLUGIN_H
#define CORVANTIDE_PLUGIN_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* 1: the first ten functions. 2: the size, the main form, the whole of
 * objCache, objConfiguration and objMusic. */
#define CORVANTIDE_PLUGIN_VERSION 2

#define CORVANTIDE_EXPORT __attribute__((visibility("default")))

/* What RegisterPlugin asks for. */
#define CORVANTIDE_CHAT_EVENTS 1u
#define CORVANTIDE_SOCKET_EVENTS 2u
#define CORVANTIDE_MEDIA_EVENTS 4u

/* One user of a channel, as objCache's User and UserList give it. */
typedef struct corvantide_user {
    const char* Name;
    const char* Stats;
    int32_t Flags;
    int32_t Ping;
    uint32_t Uptime; /* tick of joining */
    uint32_t Active; /* tick of the user's last action */
} corvantide_user;

/* The operations the bot offers a plug-in. Functions are only ever added at
 * the end. Slots (Index, i, BotIndex) are 0 for the console, 1 and up for
 * profiles. Truth values are 0 or 1. */
typedef struct corvantide_host {
    uint32_t version; /* the bot's CORVANTIDE_PLUGIN_VERSION */
    uint32_t size;    /* the bot's sizeof(corvantide_host) */

    /* Version 1. The main form. */
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

    /* Version 2. The main form: the slot on screen, choosing it, loading a
     * stored profile (its slot, or 0 when no profile has that name),
     * unloading one, connecting one; one line through the chat writer; the
     * themes; and what only the window shows (nothing to do without one). */
    const char* (*GetBaseName)(const char* Path);
    int (*CurrentIndex)(void);
    void (*SelectBot)(int Index);
    int (*LoadProfile)(const char* Name);
    int (*UnloadProfile)(const char* Name);
    void (*ConnectBot)(int Index);
    void (*DisplayProfiles)(void);
    void (*WriteChat)(int Index, uint32_t Colour, const char* Text);
    const char* (*ThemePath)(void);
    void (*LoadSettingsFile)(const char* Name);
    void (*guiReset)(void);
    void (*SelectList)(const char* List); /* "Users", "Friends" or "Clan" */
    void (*DisplayChannels)(void);
    void (*LoadFonts)(void);

    /* objCache: users. UserList fills at most `capacity` users and returns
     * how many the channel has; User fills the U-th (from 1) and returns 1,
     * or 0 when there is none. */
    int (*UserList)(int i, corvantide_user* users, int capacity);
    int (*User)(int i, int U, corvantide_user* user);
    int (*UserFind)(int i, const char* Username);

    /* objCache: the userbase. Each returns 1 when the slot has a profile. */
    int (*DatabaseCount)(int i);
    int (*DatabaseUser)(int i, int Position, const char** Username, int32_t* Rank);
    int (*DatabaseUserFind)(int i, const char* Username, const char** Found, int32_t* Rank);

    /* objCache: the machine and the program. */
    const char* (*CpuOS)(void);
    const char* (*CpuName)(void);
    const char* (*CpuLanguage)(void);
    const char* (*CpuLanguageAbbr)(void);
    const char* (*CpuCountry)(void);
    const char* (*CpuCountryAbbr)(void);
    const char* (*BotVersion)(void);

    /* objCache: the state of slot i, and acting on it. BotClanInfo returns 1
     * when the slot exists. BotProfiles fills at most `capacity` names and
     * slots of the loaded profiles and returns how many are loaded. */
    const char* (*BotProfile)(int i);
    uint32_t (*BotUptime)(int i);
    int32_t (*BotFlags)(int i);
    int32_t (*BotPing)(int i);
    const char* (*BotStatstring)(int i);
    const char* (*BotCdkeyStatus)(int i);
    int (*BotClanInfo)(int i, int* Rank, const char** Tag);
    void (*BotConnect)(int i);
    void (*BotDisconnect)(int i);
    int (*BotProfiles)(const char** Profiles, int16_t* Indexes, int capacity);

    /* objConfiguration: Setting is the member's name without Get or Set
     * ("Channel", "Trigger", "PingSpoof", ...); numbers and truth values go
     * as text. A slot without a profile is a red console line. */
    const char* (*GetConfiguration)(int BotIndex, const char* Setting);
    void (*SetConfiguration)(int BotIndex, const char* Setting, const char* Value);

    /* objMusic. */
    const char* (*GetTrack)(void);
    const char* (*GetPlayer)(void);
    void (*SetPlayer)(const char* Value);
    void (*NextTrack)(void);
    void (*PreviousTrack)(void);
    void (*StopTrack)(void);
    void (*PlayTrack)(void);
    void (*PauseTrack)(void);
    int (*PlayerOpened)(void);
    int (*OpenPlayer)(void);
    int (*ClosePlayer)(void);
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

/* The interface a plug-in was built against: its version and the size of
 * the host table it knows. */
typedef struct corvantide_abi {
    uint32_t version;
    uint32_t host_size;
} corvantide_abi;

#if !defined(CORVANTIDE_NO_ABI_MARK) && !defined(CORVANTIDE_HOST)
/* Weak, so that every file of a plug-in may include this header. */
#ifdef __cplusplus
extern
#endif
    CORVANTIDE_EXPORT __attribute__((weak)) const corvantide_abi corvantide_plugin_abi = {
        CORVANTIDE_PLUGIN_VERSION, sizeof(corvantide_host)};
#endif

#ifdef __cplusplus
}
#endif

#endif
