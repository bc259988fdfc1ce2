/* A plug-in built against the first plug-in interface, whose header had no
 * version mark and whose host table held ten functions behind a version
 * number: the table as that header laid it out. */
#include <stddef.h>
#include <stdint.h>

typedef struct first_host {
    int version;
    void (*RegisterPlugin)(const char* strName, uint32_t lngFlags);
    void (*AddOption)(const char* strPlugin, const char* strName, int bIconType, int bArg);
    int (*DeleteOption)(const char* strPlugin, int bArg);
    int (*BotIndex)(void);
    void (*AddText)(int Index, int count, const uint32_t* colours, const char* const* texts);
    void (*AddQueue)(int Index, const char* Text);
    int (*BotOnline)(int i);
    const char* (*BotName)(int i);
    const char* (*BotChannel)(int i);
    int (*UserCount)(int i);
} first_host;

typedef struct first_value {
    int32_t number;
    char* text;
    size_t text_size;
    const unsigned char* data;
    size_t data_length;
} first_value;

typedef struct first_call {
    const first_host* host;
    int argc;
    first_value* argv;
    char result[1024];
    char error[256];
} first_call;

__attribute__((visibility("default"))) int Startup(first_call* call) {
    const uint32_t colours[] = {0x00FFFF};
    const char* texts[] = {"older.so speaks through the first interface"};
    call->host->AddText(0, 1, colours, texts);
    return 0;
}
