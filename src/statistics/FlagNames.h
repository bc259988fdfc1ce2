#pragma once

#include <QString>

// Words for the numbers of the protocol. The user may rename flags, ping
// words and ping icons in Overrides.ini of the settings folder; an edit is in
// force at the next call.

// The settings folder's Overrides.ini.
QString OverridesFile();
// A name from Overrides.ini; the default when the file or the key is missing.
QString ReadOverride(const QString& section, const QString& key, const QString& defaultName);

// The names of the set user flags, joined by " + "; "Normal" for 0.
QString GetUserFlagNames(quint32 Flags);
// The names of the set channel flags, joined by " + "; "Private" for 0.
QString GetChannelFlagNames(quint32 Flags);
// "Spoofed", "Excellent" ... "Horrible" by the ping in milliseconds.
QString GetPingStatus(qint32 Ping);
// The key of the ping's icon: "Clear", "Green" ... "Maroon".
QString GetPingIcon(qint32 Ping);
// "Peon", "Grunt", "Shaman", "Chieftain"; "New Peon" for any other rank.
QString GetClanRankName(quint8 Rank);
