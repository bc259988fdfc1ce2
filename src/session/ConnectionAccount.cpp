// Account detours that run instead of the logon when a change is pending at
// the end of the version check.
#include "chat/BotElement.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

namespace {

bool isWarcraftTwo(int Index) {
    return Bots(Index).Config.Client().toUpper() == QLatin1String("W2BN");
}

const QString kNoRegistration = QStringLiteral(
    "[BNET] WarCraft II does not support account registration. Skipping this step..");

} // namespace

void ConnectionWrapper::Process_ChangePassword(int Index) {
    BotElement& bot = Bots(Index);
    if (bot.NewPassword.isEmpty())
        Output_Login(Index);
    else if (UsesNewLogon(bot.Config.Client()))
        Output_ChangePassword_NLS(Index);
    else
        Output_ChangePassword_OLS(Index);
    bot.ChangePassword = false;
}

void ConnectionWrapper::Process_ForgotPassword(int Index) {
    BotElement& bot = Bots(Index);
    if (isWarcraftTwo(Index)) {
        WriteChat(SlotTable::instance().CurrentIndex(), Status::Error, kNoRegistration);
        KillSocket(Index);
    } else if (!bot.RegisterEmail.isEmpty()) {
        PacketWriter w;
        w.WriteSTRING(bot.Config.Account());
        w.WriteSTRING(bot.RegisterEmail);
        w.SendPacket(Index, 0x5A);
        WriteChat(Index, Status::Information,
                  QStringLiteral("[BNET] Requested new password, check your E-mail momentarily.."));
    } else {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] You didn't enter a valid e-mail address."));
    }
    bot.ForgotPassword = false;
}

void ConnectionWrapper::Process_ChangeEmail(int Index) {
    BotElement& bot = Bots(Index);
    if (isWarcraftTwo(Index)) {
        WriteChat(Index, Status::Error, kNoRegistration);
    } else if (!bot.NewEmail.isEmpty() && !bot.RegisterEmail.isEmpty()) {
        PacketWriter w;
        w.WriteSTRING(bot.Config.Account());
        w.WriteSTRING(bot.RegisterEmail);
        w.WriteSTRING(bot.NewEmail);
        w.SendPacket(Index, 0x5B);
        WriteChat(Index, Status::Success,
                  QStringLiteral("[BNET] Successfully changed E-mail address."));
    }
    Output_Login(Index);
    bot.ChangeEmail = false;
}

void ConnectionWrapper::Output_RegisterEmail(int Index) {
    const QString email = Bots(Index).Config.Email();
    WriteChat(Index, Status::Warning,
              QStringLiteral("[BNET] Registered account to E-mail address (") + email +
                  QStringLiteral(")."));
    PacketWriter w;
    w.WriteSTRING(email);
    w.SendPacket(Index, 0x59);
}

void ConnectionWrapper::Handle_RegisterEmail(int Index) {
    if (!Bots(Index).Config.Email().isEmpty()) {
        Output_RegisterEmail(Index);
        return;
    }
    WriteChat(Index, Status::Warning,
              QStringLiteral("[BNET] Account is not registered, to register this account on the "
                             "next login goto Configuration and enter an Email Address."));
}
