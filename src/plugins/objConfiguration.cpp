#include "plugins/objConfiguration.h"

#include "chat/BotElement.h"
#include "plugins/PluginObject.h"
#include "presentation/ChatWriter.h"
#include "session/SlotTable.h"

#include <QHash>
#include <functional>

namespace {

struct Setting {
    std::function<QVariant(BotElement&)> get;
    std::function<void(BotElement&, const QVariant&)> set;
};

template <typename Get, typename Set> Setting text(Get g, Set s) {
    return {[g](BotElement& bot) { return QVariant((bot.Config.*g)()); },
            [s](BotElement& bot, const QVariant& v) { (bot.Config.*s)(v.toString()); }};
}

const QHash<QString, Setting>& settings() {
    static const QHash<QString, Setting> table{
        {"Database",
         {[](BotElement& bot) { return QVariant(bot.Database()); },
          [](BotElement& bot, const QVariant& v) { bot.setDatabase(v.toString()); }}},
        {"BnetServer", text(&ConfigWrapper::Server, &ConfigWrapper::setServer)},
        {"BnlsServer", text(&ConfigWrapper::ServerBNLS, &ConfigWrapper::setServerBNLS)},
        {"Cdkey", text(&ConfigWrapper::Cdkey, &ConfigWrapper::setCdkey)},
        {"CdkeyEx", text(&ConfigWrapper::Cdkey2, &ConfigWrapper::setCdkey2)},
        {"CdkeyOwner", text(&ConfigWrapper::Owner, &ConfigWrapper::setOwner)},
        {"Channel", text(&ConfigWrapper::Channel, &ConfigWrapper::setChannel)},
        {"Email", text(&ConfigWrapper::Email, &ConfigWrapper::setEmail)},
        {"ProductID", text(&ConfigWrapper::Client, &ConfigWrapper::setClient)},
        {"Password", text(&ConfigWrapper::Password, &ConfigWrapper::setPassword)},
        {"PingSpoof",
         {[](BotElement& bot) { return QVariant(bot.Config.PingSpoof()); },
          [](BotElement& bot, const QVariant& v) { bot.Config.setPingSpoof(v.toInt()); }}},
        {"Trigger", text(&ConfigWrapper::Trigger, &ConfigWrapper::setTrigger)},
        {"Username", text(&ConfigWrapper::Account, &ConfigWrapper::setAccount)},
        {"Verbyte", text(&ConfigWrapper::Verbyte, &ConfigWrapper::setVerbyte)},
        {"UDP",
         {[](BotElement& bot) { return QVariant(bot.Config.LagPlug()); },
          [](BotElement& bot, const QVariant& v) { bot.Config.setLagPlug(v.toBool()); }}},
    };
    return table;
}

// The profile's slot, or a PluginCallError saying why there is none.
BotElement& profileSlot(int BotIndex) {
    if (BotIndex < 1 || BotIndex > SlotTable::instance().highestIndex() ||
        Bots(BotIndex).Profile().isEmpty())
        throw PluginCallError(QStringLiteral("no profile is loaded in slot ") +
                              QString::number(BotIndex));
    return Bots(BotIndex);
}

void reportFailure(const QString& member, int BotIndex, const PluginCallError& error) {
    WriteChat(0, {{255, QStringLiteral("Error -> ") + member + QStringLiteral("(BotIndex: ") +
                            QString::number(BotIndex) + QStringLiteral(") - raised error ") +
                            error.description()}});
}

} // namespace

QVariant objConfiguration::get(const QString& setting, int BotIndex) const {
    try {
        return settings().value(setting).get(profileSlot(BotIndex));
    } catch (const PluginCallError& e) {
        reportFailure(QStringLiteral("Get") + setting, BotIndex, e);
        return QString();
    }
}

void objConfiguration::set(const QString& setting, int BotIndex, const QVariant& Value) {
    try {
        settings().value(setting).set(profileSlot(BotIndex), Value);
    } catch (const PluginCallError& e) {
        reportFailure(QStringLiteral("Set") + setting, BotIndex, e);
    }
}
