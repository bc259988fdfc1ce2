#include "plugins/objPlugin.h"

#include "chat/BotElement.h"
#include "plugins/objCache.h"
#include "plugins/objConfiguration.h"
#include "plugins/objMusic.h"
#include "presentation/ChatWriter.h"
#include "session/SlotTable.h"

objPlugin::objPlugin(QObject* parent) : QObject(parent) {}

int objPlugin::BotIndex() const {
    return SlotTable::instance().CurrentIndex();
}

void objPlugin::AddText(int Index, const QVariantList& pairs) {
    if (Index < 0 || Index > SlotTable::instance().highestIndex()) return;
    ColorLine line;
    for (qsizetype i = 0; i + 1 < pairs.size(); i += 2) {
        const quint32 color = pairs[i].toUInt();
        line.push_back({color == 0 ? 0xFFFFFFu : color, pairs[i + 1].toString()});
    }
    WriteChat(Index, line);
}

void objPlugin::AddQueue(int Index, const QString& Text) {
    if (Index < 1 || Index > SlotTable::instance().highestIndex()) return;
    BotElement& bot = Bots(Index);
    if (bot.Online()) bot.Queue.append(Text);
}

QObject* objPlugin::Cache() {
    if (!m_cache) m_cache = new objCache(this);
    return m_cache;
}

QObject* objPlugin::Configuration() {
    if (!m_configuration) m_configuration = new objConfiguration(this);
    return m_configuration;
}

QObject* objPlugin::Music() {
    if (!m_music) m_music = new objMusic(this);
    return m_music;
}
