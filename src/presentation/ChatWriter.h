#pragma once

#include <QString>
#include <QTime>
#include <initializer_list>
#include <optional>
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
// console): the timestamp, then each pair in its colour, then a line end.
// Nothing is written while the view is locked.
void WriteChat(int slot, const ColorLine& line);
// The theme's colours for lines the program writes itself.
enum class Status { Success, Information, Error, Failure, Warning, Neutral };
quint32 StatusColor(Status status);
// A line of one part in a status colour.
void WriteChat(int slot, Status status, const QString& text);

// Writes the parts of a line into a view as they are, with no timestamp and
// no line end.
void WriteChatView(ChatDocument& view, const ColorLine& line);
// Starts a line in a view: empties a full view, and writes the timestamp
// unless the view is the console's.
void WriteTimestamp(ChatDocument& view);
// The theme's Time template with the clock filled in.
QString FormatTimestamp();
// The time of day as the system writes it in its long format.
QString FormatLongTime(const QTime& time);

// The three passes over the whole view: each StarCraft escape, then each
// Diablo escape in lower and in upper case, colours or restyles everything
// behind it to the end of the view and disappears.
void ApplyColorCodes(ChatDocument& view);
// The same passes, removing the escapes and changing nothing else.
void StripColorCodes(ChatDocument& view);

// While one lives, the writes read the settings Locked, TimeStamp and ColorDisp
// at most once: for the several writes that print one event.
class ChatWriteBatch {
public:
    ChatWriteBatch();
    ~ChatWriteBatch();
    ChatWriteBatch(const ChatWriteBatch&) = delete;
    ChatWriteBatch& operator=(const ChatWriteBatch&) = delete;

    bool Locked();
    bool TimeStamp();
    qint32 ColorDisp();

private:
    ChatWriteBatch* m_outer;
    std::optional<bool> m_locked;
    std::optional<bool> m_timeStamp;
    std::optional<qint32> m_colorDisp;
};

// A red line, in the slot on screen, about a failure that a routine caught.
void ReportError(const QString& procedure, const QString& description, const QString& vars);
