// Arbitrary statstrings, and arbitrary templates and event values printed into
// one chat view under every colour-code setting. After each event the view's
// kept escape places must be exactly those a search of its text finds.
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/Cp1252.h"
#include "presentation/EventTemplates.h"
#include "session/SlotTable.h"
#include "statistics/Statstring.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

int g_slot = 0;

// The escape places a plain search finds, by kind.
std::vector<int> searched(const QString& text, ChatDocument::EscapeKind kind) {
    std::vector<int> out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (kind == ChatDocument::StarCraftEscape) {
            if (text[i] == QChar(0xC1)) out.push_back(int(i));
        } else if (text[i] == QChar(0xFF) && i + 1 < text.size() && text[i + 1] == QChar(kind)) {
            out.push_back(int(i));
        }
    }
    return out;
}

void checkEscapes(const ChatDocument& view) {
    const QString text = view.text();
    if (text.size() != view.length()) std::abort();
    for (auto kind : {ChatDocument::StarCraftEscape, ChatDocument::DiabloEscape,
                      ChatDocument::DiabloEscapeUpper}) {
        std::vector<int> kept;
        for (int at = view.nextEscape(0, kind); at >= 0; at = view.nextEscape(at + 1, kind))
            kept.push_back(at);
        if (kept != searched(text, kind)) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication app(*argc, *argv);
    static QTemporaryDir home;
    SetHomeFolder(home.path());
    g_slot = SlotTable::instance().LoadProfile(QStringLiteral("fuzz"));
    Bots(g_slot).UniqueAccount = QStringLiteral("fuzzer");
    Bots(g_slot).userAdd(QStringLiteral("Hero*bob"), 0x02, 30, QStringLiteral("PX2D"), 0);
    return 0;
}

// The first byte chooses the settings and the numbers; the rest is the
// template, user, message, statstring and channel, separated by 0x01.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    const uint8_t mode = data[0];
    const qint32 ping = qint32(int8_t(data[1])) * 7;
    const qint32 flags = data[2] | (data[2] & 0x80 ? 0x00100000 : 0);
    const QString text = cp1252::decode(
        QByteArrayView(reinterpret_cast<const char*>(data + 3), qsizetype(size - 3)));
    const QStringList fields = text.split(QChar(1));

    const QString statstring = fields.value(3);
    QString clan;
    ParseStatstring(statstring, true, clan);
    ParseStatstring(statstring, false, clan);
    ParseStatstring(fields.value(0), true, clan);

    // Settings are written only when they change: a write is a transaction.
    static int lastSettings = -1;
    const int wanted = (mode % 3) | (mode & 0x04) | ((mode & 0x38) == 0x38 ? 0x08 : 0);
    if (wanted != lastSettings) {
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setColorDisp(wanted & 0x03);
        settings.setTimeStamp(wanted & 0x04);
        settings.setLocked(wanted & 0x08);
        lastSettings = wanted;
    }
    ChatDocument& view = mode & 0x40 ? rtbWhisper(g_slot) : rtbChat(g_slot);
    ParseOutput(g_slot, view, fields.value(0), fields.value(1), fields.value(2), statstring, ping,
                flags, fields.value(4), qint32(mode) << 8);
    checkEscapes(view);
    return 0;
}
