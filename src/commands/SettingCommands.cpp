#include "commands/SettingCommands.h"

#include "chat/BotElement.h"
#include "commands/CommandContext.h"
#include "config/FileHandler.h"
#include "session/SlotTable.h"

#include <algorithm>

namespace settingcommands {
namespace {

ConfigWrapper& config(const CommandContext& c) {
    return Bots(c.Index).Config;
}

using StringSetter = bool (ConfigWrapper::*)(const QString&);

// The success reply once the set reached the store; otherwise what was not
// saved, in the words of the success line ("new home channel").
void replyToSet(const CommandContext& c, bool saved, const char* success) {
    if (saved) {
        c.reply(QLatin1String(success));
        return;
    }
    QString what = QLatin1String(success);
    what.remove(QStringLiteral("Successfully set ")).chop(1);
    c.notSaved(QStringLiteral("Could not save the ") + what, config(c).writeError());
}

// Stores the argument when its length is within bounds.
void setBounded(const CommandContext& c, qsizetype low, qsizetype high, StringSetter store,
                const char* success, const char* refusal) {
    if (c.Rest.size() < low || c.Rest.size() > high) {
        c.reply(QLatin1String(refusal));
        return;
    }
    replyToSet(c, (config(c).*store)(c.Rest), success);
}

void setNonEmpty(const CommandContext& c, StringSetter store, const char* success,
                 const char* refusal) {
    setBounded(c, 1, c.Rest.size() + 1, store, success, refusal);
}

// The product codes, also accepted written backwards as they stand in the
// version check's files.
QString productFromText(const QString& text) {
    static const char* const codes[] = {"STAR", "SEXP", "W2BN", "D2DV", "D2XP", "WAR3", "W3XP"};
    const QString upper = text.toUpper();
    QString reversed = upper;
    std::reverse(reversed.begin(), reversed.end());
    for (const char* code : codes) {
        if (upper == QLatin1String(code)) return upper;
        if (reversed == QLatin1String(code)) return reversed;
    }
    return {};
}

const QString kIdleCleared =
    QStringLiteral("Idle message has been cleared, as a result idle is now disabled.");

} // namespace

void ClearIdle(const CommandContext& c) {
    if (config(c).setIdleMsg({}))
        c.reply(kIdleCleared);
    else
        c.notSaved(QStringLiteral("Could not clear the idle message"), config(c).writeError());
}

void SetHome(const CommandContext& c) {
    setBounded(c, 1, 31, &ConfigWrapper::setChannel, "Successfully set new home channel.",
               "Could not change home channel, invalid length.");
}

void SetAccount(const CommandContext& c) {
    setBounded(c, 1, 15, &ConfigWrapper::setAccount, "Successfully set new account.",
               "Could not change account, invalid length.");
}

void SetPassword(const CommandContext& c) {
    setBounded(c, 1, 15, &ConfigWrapper::setPassword, "Successfully set new password.",
               "Could not change password, invalid length.");
}

void SetTrigger(const CommandContext& c) {
    setBounded(c, 1, 1, &ConfigWrapper::setTrigger, "Successfully set new trigger.",
               "Could not change trigger, invalid length.");
}

void SetServer(const CommandContext& c) {
    setNonEmpty(c, &ConfigWrapper::setServer, "Successfully set new BNCS server.",
                "Could not change BNCS server, please specify server.");
}

void SetServerBnls(const CommandContext& c) {
    setNonEmpty(c, &ConfigWrapper::setServerBNLS, "Successfully set new BNLS server.",
                "Could not change BNLS server, please specify server.");
}

void SetProduct(const CommandContext& c) {
    if (c.Rest.size() != 4) {
        c.reply(QStringLiteral("Could not change productID, please specify productID."));
        return;
    }
    const QString product = productFromText(c.Rest);
    if (product.isEmpty()) {
        c.reply(QStringLiteral("Could not change productID, that product is not supported."));
        return;
    }
    replyToSet(c, config(c).setClient(product), "Successfully set new productID.");
}

void SetCdkey(const CommandContext& c) {
    setNonEmpty(c, &ConfigWrapper::setCdkey, "Successfully set new cdkey.",
                "Could not change cdkey, please specify a cdkey.");
}

void SetCdkeyEx(const CommandContext& c) {
    setNonEmpty(c, &ConfigWrapper::setCdkey2, "Successfully set new expansion cdkey.",
                "Could not change expansion cdkey, please specify a cdkey.");
}

void SetIdleTime(const CommandContext& c) {
    const qint32 minutes = LeadingNumber(c.Rest);
    if (minutes <= 0) {
        c.reply(QStringLiteral(
            "Could not change idle interval, please specify a number greater than zero."));
        return;
    }
    replyToSet(c, config(c).setIdleTime(minutes), "Successfully set new idle interval.");
}

void SetIdle(const CommandContext& c) {
    if (c.Rest.isEmpty()) {
        ClearIdle(c);
        return;
    }
    replyToSet(c, config(c).setIdleMsg(c.Rest), "Successfully set new idle message.");
}

} // namespace settingcommands
