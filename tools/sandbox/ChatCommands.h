#pragma once

#include <QString>

namespace sandbox {

class ChatHub;
class ChatUser;

// What the server does with a line of chat text: talk, or one of its slash commands.
namespace chatcommands {

// Longest chat line the server passes on, in characters.
constexpr int kLongestLine = 223;

void run(ChatHub& hub, ChatUser& user, const QString& line);

} // namespace chatcommands
} // namespace sandbox
