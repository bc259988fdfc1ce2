#pragma once

#include <QString>

class ChatDocument;

// The user of a chat event as a template sees it: the name shown for %user,
// and the plain name that the user's colour, group, own name and blocks are
// looked up under. An alias is nobody's name in the store, so a user shown
// under one must still be found under the name the server gave.
struct EventUser {
    EventUser() = default;
    // A name shown as it stands and looked up under its plain form.
    EventUser(const QString& name); // NOLINT(google-explicit-constructor)
    // A name as the server gave it: shown as its display name.
    static EventUser fromRaw(const QString& raw);

    QString shown;
    QString plain;
};

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
// Values an event lacks are left empty. An empty template prints nothing, not
// even a timestamp.
void ParseOutput(int slot, ChatDocument& view, const QString& Template, const EventUser& user = {},
                 const QString& message = {}, const QString& statstring = {}, qint32 ping = 0,
                 qint32 flags = 0, const QString& channel = {}, qint32 channelFlags = 0);
