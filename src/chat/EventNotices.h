#pragma once

#include <QString>

// The chat events that may draw the user back to the window.
enum class NoticeEvent { Talk, Emote, Whisper, FriendEntered, FriendExited, Kicked };

// Flashes the window when Flash and the event's own flash setting are on, and
// shows a tray tip titled with the slot's profile when Balloon and the
// event's own tip setting are on and the window is in the tray. A line a user
// sent reads as the user's name, what they did and the text in quotes
// ("alice said "hi"."); a friend notice or a kick carries the server's text.
// `Username` is the raw name, as the event brought it.
void NotifyEvent(int Index, NoticeEvent event, const QString& Username, const QString& Text);
