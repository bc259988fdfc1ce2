#pragma once

#include <QString>

class ChatDocument;

// Prints one line of a chat event into a view by a template of the theme.
//
// A template is cut at each '#'; the character behind a '#' is the mark that
// colours its part: a digit picks that custom colour, 'A' (also written
// "user") the user's colour, anything else the theme's ForeColor. What stands
// before the first '#' is not printed. In each part the tokens %sp, %user,
// %group, %flags_display, %message, %stats, %client, %ping_icon,
// %ping_status, %ping, %flags, %channel_flags and %channel are replaced in
// that order, so a message is open to the tokens behind %message.
//
// `user` is the display name; values an event lacks are left empty. An empty
// template prints nothing, not even a timestamp.
void ParseOutput(int slot, ChatDocument& view, const QString& Template, const QString& user = {},
                 const QString& message = {}, const QString& statstring = {}, qint32 ping = 0,
                 qint32 flags = 0, const QString& channel = {}, qint32 channelFlags = 0);
