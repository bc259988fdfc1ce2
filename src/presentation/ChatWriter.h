#pragma once

#include <QString>

#include <initializer_list>
#include <utility>
#include <vector>

class ChatDocument;

// One line of output: pairs of colour (24-bit, red in the low byte) and text.
struct ColorPart {
    quint32 color;
    QString text;
};
using ColorLine = std::vector<ColorPart>;

// A view is emptied whole once it has grown to this many characters.
constexpr int kChatViewLimit = 65535;

// Writes a line of the program's own into the chat view of a slot (0 is the
// console).
void WriteChat(int slot, const ColorLine& line);
// The theme's colours for lines the program writes itself.
enum class Status { Success, Information, Error, Failure, Warning, Neutral };
quint32 StatusColor(Status status);
// A line of one part in a status colour.
void WriteChat(int slot, Status status, const QString& text);

// Writes the parts of a line into a view as they are, with no line end.
void WriteChatView(ChatDocument& view, const ColorLine& line);
