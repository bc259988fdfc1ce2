// The old logon system: the password travels as a broken SHA-1 hash keyed by
// the two tokens of the connection.
#include "chat/BotElement.h"
#include "logon/BncsUtil.h"
#include "platform/Cp1252.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/LogonRecord.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

namespace {

QByteArray passwordHash(const QString& password) {
    QByteArray hash(qsizetype(logon::kPasswordHashSize), '\0');
    logon::hashPassword(cp1252::encode(password).toStdString(),
                        reinterpret_cast<std::uint8_t*>(hash.data()));
    return hash;
}

QByteArray doublePasswordHash(int Index) {
    const LogonRecord& logon = Logons(Index);
    QByteArray hash(qsizetype(logon::kPasswordHashSize), '\0');
    logon::doubleHashPassword(cp1252::encode(Bots(Index).Config.Password().toLower()).toStdString(),
                              logon.ClientToken, logon.ServerToken,
                              reinterpret_cast<std::uint8_t*>(hash.data()));
    return hash;
}

} // namespace

void ConnectionWrapper::Output_UDP(int Index) {
    if (!Bots(Index).Config.LagPlug())
        return;
    PacketWriter w;
    w.WriteVOID(QByteArrayLiteral("tenb"));
    w.SendPacket(Index, 0x14);
    WriteChat(Index, Status::Information, QStringLiteral("[BNET] Using UDP plug.."));
}

void ConnectionWrapper::Output_AuthLogon_OLS(int Index) {
    const LogonRecord& logon = Logons(Index);
    PacketWriter w;
    w.WriteDWORD(logon.ClientToken);
    w.WriteDWORD(logon.ServerToken);
    w.WriteVOID(doublePasswordHash(Index));
    w.WriteSTRING(Bots(Index).Config.Account());
    w.SendPacket(Index, 0x3A);
    WriteChat(Index, Status::Information, QStringLiteral("[BNET] Attempting to logon.."));
}

void ConnectionWrapper::Output_CreateAccount_OLS(int Index) {
    const ConfigWrapper& config = Bots(Index).Config;
    PacketWriter w;
    // The account is made with the hash that every logon will be checked
    // against, the lower-cased password's, as game clients make it: a hash of
    // the password as typed would make an account that a mixed-case password
    // can never log on to.
    w.WriteVOID(passwordHash(config.Password().toLower()));
    w.WriteSTRING(config.Account());
    w.SendPacket(Index, 0x3D);
    WriteChat(Index, Status::Information, QStringLiteral("[BNET] Attempting to create account.."));
}

void ConnectionWrapper::Output_ChangePassword_OLS(int Index) {
    const LogonRecord& logon = Logons(Index);
    const BotElement& bot = Bots(Index);
    PacketWriter w;
    w.WriteDWORD(logon.ClientToken);
    w.WriteDWORD(logon.ServerToken);
    w.WriteVOID(doublePasswordHash(Index));
    w.WriteVOID(passwordHash(bot.NewPassword.toLower()));
    w.WriteSTRING(bot.Config.Account());
    w.SendPacket(Index, 0x31);
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Attempting to change password.."));
}

void ConnectionWrapper::Handle_LoginResponse_OLS(int Index, PacketReader& Reader) {
    const quint8 status = Reader.ReadBYTE();
    switch (status) {
    case 0:
        Output_EnterChat(Index);
        break;
    case 1:
        Output_CreateAccount_OLS(Index);
        break;
    case 2:
        WriteChat(Index, Status::Error, QStringLiteral("[BNET] Account's password was incorrect!"));
        KillSocket(Index);
        break;
    default:
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Account login failed for an unknown reason! (") +
                      Reader.ReadSTRING() + QStringLiteral(")"));
        KillSocket(Index);
        break;
    }
}

void ConnectionWrapper::Handle_CreateAccount_OLS(int Index, quint32 status) {
    const char* refusal = nullptr;
    switch (status) {
    case 0:
        WriteChat(Index, Status::Success, QStringLiteral("[BNET] Successfully created account!"));
        Logons(Index).ClientToken = GetTickCount();
        Output_UDP(Index);
        Output_AuthLogon_OLS(Index);
        return;
    case 2: refusal = "[BNET] Account contained invalid characters."; break;
    case 3: refusal = "[BNET] Account contained a banned word."; break;
    case 4: refusal = "[BNET] Account already exists."; break;
    case 6: refusal = "[BNET] Account did not contain enough characters."; break;
    default:
        // The session waits where it is until the watchdog begins again.
        return;
    }
    WriteChat(Index, Status::Error, QString::fromLatin1(refusal));
    KillSocket(Index);
}

void ConnectionWrapper::Handle_ChangePassword_OLS(int Index, PacketReader&) {
    BotElement& bot = Bots(Index);
    // The first payload byte, read from the stream where the frame still stands.
    const bool accepted = bot.InBNCS.size() > 4 && bot.InBNCS.at(4) != 0;
    if (!accepted) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Failed to change password, maybe an incorrect password "
                                 "was specified."));
        KillSocket(Index);
        return;
    }
    bot.Config.setPassword(bot.NewPassword);
    bot.NewPassword.clear();
    Logons(Index).ClientToken = GetTickCount();
    Output_UDP(Index);
    Output_AuthLogon_OLS(Index);
}
