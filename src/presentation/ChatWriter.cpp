#include "presentation/ChatWriter.h"

#include "platform/ChatDocument.h"
#include "presentation/Theme.h"
#include "session/SlotTable.h"

namespace {

void writeParts(ChatDocument& view, const ColorLine& line, bool endLine) {
    for (size_t i = 0; i < line.size(); ++i) {
        CharFormat format;
        // Colour 0 would be black on the dark view: it means white.
        format.color = line[i].color == 0 ? 0xFFFFFF : line[i].color;
        QString text = line[i].text;
        if (endLine && i + 1 == line.size())
            text += QLatin1String("\r\n");
        text.remove(QChar(u'\0'));
        view.append(text, format);
    }
}

} // namespace

void WriteChat(int slot, const ColorLine& line) {
    ChatDocument& view = rtbChat(slot);
    if (view.length() >= kChatViewLimit)
        view.clear();
    writeParts(view, line, true);
}

void WriteChatView(ChatDocument& view, const ColorLine& line) {
    writeParts(view, line, false);
}

quint32 StatusColor(Status status) {
    const StatusColors& c = CurrentTheme().status;
    switch (status) {
    case Status::Success:
        return c.Success;
    case Status::Information:
        return c.Information;
    case Status::Error:
        return c.Error;
    case Status::Failure:
        return c.Failure;
    case Status::Warning:
        return c.Warning;
    case Status::Neutral:
        return c.Neutral;
    }
    return c.Information;
}

void WriteChat(int slot, Status status, const QString& text) {
    WriteChat(slot, {{StatusColor(status), text}});
}
