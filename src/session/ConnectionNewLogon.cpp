// The new logon system of the WarCraft III products: an SRP proof exchange.
// The arithmetic lives behind the logon component's session handles.
#include "chat/BotElement.h"
#include "logon/BncsUtil.h"
#include "platform/Cp1252.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/LogonRecord.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

#include <QCoreApplication>

namespace {

std::uint8_t* bytes(QByteArray& data) {
    return reinterpret_cast<std::uint8_t*>(data.data());
}

std::string text(const QString& value) {
    return cp1252::encode(value).toStdString();
}

QByteArray clientKeyOf(quint32 session) {
    QByteArray key(qsizetype(logon::kNlsKeySize), '\0');
    logon::nls_get_A(session, bytes(key));
    return key;
}

// Reads exactly `length` bytes; a short field means a malformed frame.
QByteArray readExactly(PacketReader& reader, int length) {
    QByteArray field = reader.ReadVOID(length);
    if (field.size() != length)
        throw PacketReadError("field cut short");
    return field;
}

} // namespace

void ConnectionWrapper::sendLogonChallenge(int Index) {
    PacketWriter w;
    w.WriteVOID(Logons(Index).ClientKey);
    w.WriteSTRING(Bots(Index).Config.Account());
    w.SendPacket(Index, 0x53);
}

void ConnectionWrapper::Output_AuthLogon_NLS(int Index) {
    LogonRecord& logon = Logons(Index);
    const ConfigWrapper& config = Bots(Index).Config;
    if (logon.NlsHandle == 0) {
        logon.NlsHandle = logon::nls_init(text(config.Account()), text(config.Password().toLower()));
        if (logon.NlsHandle == 0) {
            WriteChat(Index, Status::Error, QStringLiteral("[BncsUtil] Failed to initialize NLS."));
            KillSocket(Index);
            return;
        }
    }
    logon.ClientKey = clientKeyOf(logon.NlsHandle);
    sendLogonChallenge(Index);
    WriteChat(Index, Status::Information, QStringLiteral("[BNET] Attempting to login.."));
}

void ConnectionWrapper::Handle_LogonResponse_NLS(int Index, PacketReader& Reader) {
    const quint32 status = Reader.ReadDWORD();
    LogonRecord& logon = Logons(Index);
    switch (status) {
    case 0: {
        WriteChat(Index, Status::Information,
                  QStringLiteral("[BNET] Attempting to proof logon..."));
        // One pass of the event loop, so the line shows before the proof's
        // arithmetic. The stream cutter is marked busy meanwhile: a data event
        // arriving now only appends, and this frame is handled once.
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        logon.Salt = readExactly(Reader, 32);
        logon.ServerKey = readExactly(Reader, 32);
        logon.ClientProof = QByteArray(qsizetype(logon::kNlsProofSize), '\0');
        // A server key that is 0 modulo N would let whoever sent it check guesses
        // of the password against the proof: no proof goes to such a server.
        if (!logon::nls_get_M1(logon.NlsHandle, bytes(logon.ClientProof),
                               bytes(logon.ServerKey), bytes(logon.Salt))) {
            WriteChat(Index, Status::Error,
                      QStringLiteral("[BNET] The server's logon challenge is unusable (its key "
                                     "is 0 modulo N); no password proof was sent."));
            KillSocket(Index);
            break;
        }
        PacketWriter w;
        w.WriteVOID(logon.ClientProof);
        w.SendPacket(Index, 0x54);
        break;
    }
    case 1:
        Output_CreateAccount_NLS(Index);
        break;
    case 5:
        WriteChat(Index, Status::Warning, QStringLiteral("[BNET] Account requires upgrade!"));
        KillSocket(Index);
        break;
    default:
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Unable to login, unidentified reason."));
        KillSocket(Index);
        break;
    }
}

void ConnectionWrapper::Handle_LogonProof_NLS(int Index, PacketReader& Reader) {
    const quint32 status = Reader.ReadDWORD();
    if (status == 2) {
        WriteChat(Index, Status::Error, QStringLiteral("[BNET] Account's password was incorrect!"));
        KillSocket(Index);
        return;
    }
    if (status != 0 && status != 0x0E) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Unable to login for an unidentified reason."));
        KillSocket(Index);
        return;
    }
    LogonRecord& logon = Logons(Index);
    logon.ServerProof = readExactly(Reader, 20);
    if (!logon::nls_check_M2(logon.NlsHandle, bytes(logon.ServerProof))) {
        // The connection stays; the watchdog begins the logon again.
        WriteChat(Index, Status::Error, QStringLiteral("[BNET] Server rejected password proof."));
        return;
    }
    logon::nls_free(logon.NlsHandle);
    logon.NlsHandle = 0;
    if (status == 0) {
        WriteChat(Index, Status::Success,
                  QStringLiteral("[BNET] Logon proof passed, attempting to enter chat.."));
    } else if (!Bots(Index).Config.Email().isEmpty()) {
        Output_RegisterEmail(Index);
    } else {
        WriteChat(Index, Status::Warning,
                  QStringLiteral("[BNET] Account is not registered, to register this account on "
                                 "the next login goto Configuration and enter an Email Address."));
    }
    Output_EnterChat(Index);
}

void ConnectionWrapper::Output_CreateAccount_NLS(int Index) {
    const QByteArray account = cp1252::encode(Bots(Index).Config.Account());
    QByteArray buffer(account.size() + 65, '\0');
    if (logon::nls_account_create(Logons(Index).NlsHandle, bytes(buffer),
                                  std::size_t(buffer.size())) == 0) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNCSutil] Account is of an invalid length."));
        KillSocket(Index);
        return;
    }
    PacketWriter w;
    w.WriteVOID(buffer);
    w.SendPacket(Index, 0x52);
}

void ConnectionWrapper::Handle_CreateAccount_NLS(int Index, PacketReader& Reader) {
    const quint32 status = Reader.ReadDWORD();
    if (status == 0) {
        WriteChat(Index, Status::Success,
                  QStringLiteral("[BNET] Successfully created account, attempting to logon.."));
        LogonRecord& logon = Logons(Index);
        const ConfigWrapper& config = Bots(Index).Config;
        logon.NlsHandle = logon::nls_init(text(config.Account()), text(config.Password().toLower()));
        if (logon.NlsHandle == 0) {
            WriteChat(Index, Status::Error,
                      QStringLiteral("[BNCSutil] Failed to generate account logon packet."));
            return;
        }
        logon.ClientKey = clientKeyOf(logon.NlsHandle);
        sendLogonChallenge(Index);
        return;
    }
    WriteChat(Index, Status::Error,
              status >= 7 && status <= 12
                  ? QStringLiteral("[BNET] Unable to create account, invalid characters or length.")
                  : QStringLiteral("[BNET] Unable to create account, account already exists."));
    KillSocket(Index);
}

void ConnectionWrapper::Output_ChangePassword_NLS(int Index) {
    LogonRecord& logon = Logons(Index);
    const ConfigWrapper& config = Bots(Index).Config;
    // The change starts from the password as stored, not lower-cased.
    logon.NlsHandle = logon::nls_init(text(config.Account()), text(config.Password()));
    if (logon.NlsHandle == 0) {
        WriteChat(Index, Status::Error, QStringLiteral("[BncsUtil] Failed to initialize NLS!"));
        KillSocket(Index);
        return;
    }
    PacketWriter w;
    w.WriteVOID(clientKeyOf(logon.NlsHandle));
    w.WriteSTRING(config.Account());
    w.SendPacket(Index, 0x55);
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Attempting to change password.."));
}

void ConnectionWrapper::Handle_ChangePassword_NLS(int Index, PacketReader& Reader) {
    const quint32 status = Reader.ReadDWORD();
    LogonRecord& logon = Logons(Index);
    BotElement& bot = Bots(Index);
    switch (status) {
    case 0: {
        logon.Salt = readExactly(Reader, 32);
        logon.ChangeServerKey = readExactly(Reader, 32);
        logon.ChangeNewPassword = cp1252::encode(bot.NewPassword);
        logon.ChangeProofData = QByteArray(qsizetype(logon::kNlsChangeProofSize), '\0');
        logon.NlsNewHandle = logon::nls_account_change_proof(
            logon.NlsHandle, bytes(logon.ChangeProofData), logon.ChangeNewPassword.toStdString(),
            bytes(logon.ChangeServerKey), bytes(logon.Salt));
        if (logon.NlsNewHandle == 0) {
            WriteChat(Index, Status::Error,
                      QStringLiteral("[BNCSutil] Failed to generate account change proof packet."));
            return;
        }
        logon.NlsOldHandle = logon.NlsHandle;
        logon.NlsHandle = logon.NlsNewHandle;
        PacketWriter w;
        w.WriteVOID(logon.ChangeProofData);
        w.SendPacket(Index, 0x56);
        break;
    }
    case 1:
        bot.Config.setPassword(bot.NewPassword);
        bot.NewPassword.clear();
        WriteChat(Index, Status::Warning, QStringLiteral("[BNET] Attempting to create account..."));
        Output_CreateAccount_NLS(Index);
        break;
    case 5:
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Failed to change password, account requires upgrade."));
        KillSocket(Index);
        break;
    default:
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Failed to change password for an unidentified reason."));
        KillSocket(Index);
        break;
    }
}

void ConnectionWrapper::Handle_ChangeProof_NLS(int Index, PacketReader& Reader) {
    const quint32 status = Reader.ReadDWORD();
    if (status == 2) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Failed to change password, incorrect password was "
                                 "specified."));
        KillSocket(Index);
        return;
    }
    if (status != 0) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Failed to change password for an unidentified reason."));
        KillSocket(Index);
        return;
    }
    LogonRecord& logon = Logons(Index);
    logon.ServerProof = readExactly(Reader, 20);
    if (!logon::nls_check_M2(logon.NlsOldHandle, bytes(logon.ServerProof),
                             bytes(logon.ChangeServerKey), bytes(logon.Salt))) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] Server rejected proof, password was not changed."));
        return;
    }
    logon::nls_free(logon.NlsOldHandle);
    logon.NlsOldHandle = 0;
    logon.ClientKey = clientKeyOf(logon.NlsHandle);
    WriteChat(Index, Status::Success,
              QStringLiteral("[BNET] Successfully changed password, attempting to logon..."));
    BotElement& bot = Bots(Index);
    bot.Config.setPassword(bot.NewPassword);
    bot.NewPassword.clear();
    sendLogonChallenge(Index);
}
