// Client identification, the version check (locally or through BNLS) and the
// product keys: the first half of every logon.
#include "chat/BotElement.h"
#include "config/ProfileSheet.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "logon/BncsUtil.h"
#include "platform/Cp1252.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/LogonRecord.h"
#include "session/MachineFacts.h"
#include "session/PacketWriter.h"
#include "session/ProductVersions.h"
#include "session/SlotTable.h"
#include "session/StreamCutter.h"

namespace {

struct Product {
    const char* code;
    int number;
};

constexpr Product kProducts[] = {{"STAR", 1}, {"SEXP", 2}, {"W2BN", 3}, {"D2DV", 4},
                                 {"D2XP", 5}, {"JSTR", 6}, {"WAR3", 7}, {"W3XP", 8}};

QString reversed(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (qsizetype i = text.size(); i-- > 0;)
        out += text[i];
    return out;
}

std::string bytesOf(const QString& text) {
    return cp1252::encode(text).toStdString();
}

// The version and information text of a game executable; version 0 when it
// can't be read. The buffer grows until the text fits or passes 1 KiB.
quint32 GetExeInfo(const QString& path, QByteArray& information) {
    const std::string file = bytesOf(path);
    std::uint32_t version = 0;
    for (std::size_t size = 256;; size += 256) {
        QByteArray buffer(qsizetype(size), '\0');
        const std::size_t length =
            logon::getExeInfo(file, buffer.data(), size, version, logon::kPlatformIx86);
        if (length == 0) return 0;
        if (length < size || size > 1024) {
            information =
                buffer.left(buffer.indexOf('\0') < 0 ? buffer.size() : buffer.indexOf('\0'));
            return version;
        }
    }
}

} // namespace

bool UsesNewLogon(const QString& Client) {
    const QString client = Client.toUpper();
    return client == QLatin1String("WAR3") || client == QLatin1String("W3XP");
}

bool IsDiabloRealm(const QString& Client) {
    const QString client = Client.toUpper();
    return client == QLatin1String("D2DV") || client == QLatin1String("D2XP");
}

bool CanHashLocally(const QString& Client) {
    return UsesNewLogon(Client) || IsDiabloRealm(Client);
}

bool HasTwoKeys(const QString& Client) {
    const QString client = Client.toUpper();
    return client == QLatin1String("W3XP") || client == QLatin1String("D2XP");
}

int ProductCode(const QString& Code) {
    const QString upper = Code.toUpper();
    for (const Product& p : kProducts) {
        const QString code = QString::fromLatin1(p.code);
        if (upper == code || upper == reversed(code)) return p.number;
    }
    return 0;
}

HashFiles GetHashFiles(const QString& Client) {
    const SettingsWrapper& settings = SettingsWrapper::instance();
    const QString client = Client.toUpper();
    if (client == QLatin1String("D2DV") || client == QLatin1String("D2XP")) {
        const QString folder =
            client == QLatin1String("D2DV") ? settings.PathD2DV() : settings.PathD2XP();
        return {folder + QStringLiteral("/Game.exe"), folder + QStringLiteral("/Bnclient.dll"),
                folder + QStringLiteral("/D2client.dll")};
    }
    if (client == QLatin1String("WAR3") || client == QLatin1String("W3XP")) {
        const QString folder = settings.PathWAR3();
        return {folder + QStringLiteral("/War3.exe"), folder + QStringLiteral("/Storm.dll"),
                folder + QStringLiteral("/Game.dll")};
    }
    return {};
}

void ConnectionWrapper::Output_AuthInfo(int Index) {
    const ConfigWrapper& config = Bots(Index).Config;
    const MachineFacts& machine = Machine();
    PacketWriter w;
    w.WriteDWORD(0);
    w.WriteDWORD(0x49583836);
    w.WriteVOID(cp1252::encode(reversed(config.Client())).left(4));
    w.WriteDWORD(ProductVersions::Of(config));
    for (int i = 0; i < 5; ++i)
        w.WriteDWORD(0); // language, local address, time zone, locale, language id
    w.WriteSTRING(machine.CountryAbbreviation);
    w.WriteSTRING(machine.CountryName);
    w.SendPacket(Index, 0x50);
    SendPingSpoof(Index);
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Identifying client information.."));
}

void ConnectionWrapper::Handle_AuthInfo(int Index, PacketReader& Reader) {
    LogonRecord& logon = Logons(Index);
    const QString client = Bots(Index).Config.Client();
    const SettingsWrapper& settings = SettingsWrapper::instance();
    logon.ClientToken = GetTickCount();
    logon.LogonType = Reader.ReadDWORD();
    logon.ServerToken = Reader.ReadDWORD();
    if (logon.LogonType == 0) {
        WriteChat(Index, Status::Success,
                  QStringLiteral("[BNET] Using Old Login System (Broken SHA-1)."));
    } else if (logon.LogonType == 2) {
        WriteChat(Index, Status::Success,
                  QStringLiteral("[BNET] Using New Login System Version 2."));
    } else {
        WriteChat(Index, Status::Warning,
                  QStringLiteral("[BNET] Using an unrecognized or unsupported login system "
                                 "version."));
        KillSocket(Index);
        return;
    }

    const auto showChallenge = [&](const QString& nameEnd) {
        if (!settings.ShowAdvanced()) return;
        WriteChat(Index, Status::Neutral,
                  QStringLiteral("[BNET] Checksum formula: ") +
                      cp1252::decode(logon.ChecksumFormula) + QStringLiteral("."));
        WriteChat(Index, Status::Neutral,
                  QStringLiteral("[BNET] MPQ filename: ") + cp1252::decode(logon.MpqName) +
                      nameEnd);
    };

    const QString upper = client.toUpper();
    if (upper == QLatin1String("STAR") || upper == QLatin1String("SEXP") ||
        upper == QLatin1String("W2BN")) {
        logon.MpqTime = Reader.ReadVOID(8);
        Reader.Skip(4);
        logon.MpqName = Reader.ReadSTRINGBytes();
        logon.ChecksumFormula = Reader.ReadSTRINGBytes();
        showChallenge(QString());
        PacketWriter w;
        w.WriteDWORD(quint32(ProductCode(client)));
        w.WriteDWORD(0);
        w.WriteDWORD(logon.ServerToken);
        w.WriteVOID(logon.MpqTime);
        w.WriteSTRING(logon.MpqName);
        w.WriteSTRING(logon.ChecksumFormula);
        w.SendPacket(Index, 0x1A, true);
        return;
    }
    // An unknown product goes no further: the watchdog begins again.
    if (!CanHashLocally(client)) return;

    Reader.Skip(12);
    logon.MpqName = Reader.ReadSTRINGBytes();
    logon.MpqNumber = logon::extractMPQNumber(logon.MpqName.toStdString());
    logon.ChecksumFormula = Reader.ReadSTRINGBytes();
    showChallenge(QStringLiteral("."));
    if (logon.MpqNumber < 0) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNET] MPQ number is unsupported or invalid."));
        KillSocket(Index);
        return;
    }
    if (!settings.LocalHashing()) {
        Bnls0x09(Index);
        return;
    }
    const HashFiles files = GetHashFiles(client);
    std::uint32_t checksum = 0;
    if (logon::checkRevisionFlat(logon.ChecksumFormula.toStdString(), bytesOf(files.file1),
                                 bytesOf(files.file2), bytesOf(files.file3), logon.MpqNumber,
                                 checksum) <= 0) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BncsUtil] CheckRevision call failed, make sure you specified "
                                 "the correct hash path for this product."));
        KillSocket(Index);
        return;
    }
    QByteArray information;
    const quint32 version = GetExeInfo(files.file1, information);
    if (version == 0) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("Executable file (") + files.file1 +
                      QStringLiteral(") seems to be of an invalid version or cannot be handled."));
        KillSocket(Index);
        return;
    }
    Output_AuthCheck(Index, checksum, version, information);
}

void ConnectionWrapper::DecodeCdkey(int Index, const QString& Key) {
    LogonRecord& logon = Logons(Index);
    const QByteArray key = cp1252::encode(Key);
    logon.KeyDecoder = logon::kd_create(key.constData(), int(key.size()));
    logon.KeyHashLength = quint32(std::max(
        0, logon::kd_calculateHash(logon.KeyDecoder, logon.ClientToken, logon.ServerToken)));
    logon.KeyHash = QByteArray(qsizetype(logon.KeyHashLength), '\0');
    if (logon.KeyHashLength > 0)
        logon::kd_getHash(logon.KeyDecoder, reinterpret_cast<std::uint8_t*>(logon.KeyHash.data()));
}

void ConnectionWrapper::writeKey(int Index, PacketWriter& w, const QString& key) {
    DecodeCdkey(Index, key);
    LogonRecord& logon = Logons(Index);
    w.WriteDWORD(quint32(cp1252::encode(key).size()));
    w.WriteDWORD(logon::kd_product(logon.KeyDecoder));
    w.WriteDWORD(logon::kd_val1(logon.KeyDecoder));
    w.WriteDWORD(0);
    w.WriteVOID(logon.KeyHash);
    logon::kd_free(logon.KeyDecoder);
}

void ConnectionWrapper::Output_AuthCheck(int Index, quint32 Checksum, quint32 version,
                                         const QByteArray& Result) {
    const ConfigWrapper& config = Bots(Index).Config;
    const bool twoKeys = HasTwoKeys(config.Client());
    PacketWriter w;
    w.WriteDWORD(Logons(Index).ClientToken);
    w.WriteDWORD(version);
    w.WriteDWORD(Checksum);
    w.WriteDWORD(twoKeys ? 2 : 1);
    w.WriteDWORD(0);
    writeKey(Index, w, config.Cdkey());
    if (twoKeys) writeKey(Index, w, config.Cdkey2());
    w.WriteSTRING(Result);
    QString owner = config.Owner();
    if (owner.isEmpty()) owner = QStringLiteral("Corvantide") + Machine().versionText(false);
    w.WriteSTRING(owner);
    w.SendPacket(Index, 0x51);
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Authorizing client information.."));
}

void ConnectionWrapper::Handle_AuthCheck(int Index, PacketReader& Reader) {
    const quint32 result = Reader.ReadDWORD();
    BotElement& bot = Bots(Index);
    if (result == 0) {
        Logons(Index).VerbyteLearned = false;
        if (bot.ChangePassword)
            Process_ChangePassword(Index);
        else if (bot.ChangeEmail)
            Process_ChangeEmail(Index);
        else if (bot.ForgotPassword)
            Process_ForgotPassword(Index);
        else if (UsesNewLogon(bot.Config.Client()))
            Output_AuthLogon_NLS(Index);
        else {
            Output_UDP(Index);
            Output_AuthLogon_OLS(Index);
        }
        return;
    }
    if ((result == 0x100 || result == 0x101) && askVerbyte(Index, result)) return;
    QString line;
    switch (result) {
    case 0x100:
    case 0x101:
        refuseVersion(Index, result);
        return;
    case 0x200:
        line = QStringLiteral("[BNET] Your CD-Key is invalid.");
        break;
    case 0x201:
        line = QStringLiteral("[BNET] Your CD-Key is in use by ") + Reader.ReadSTRING() +
               QStringLiteral(".");
        break;
    case 0x202:
        line = QStringLiteral("[BNET] Your CD-Key has been banned.");
        break;
    case 0x203:
        line = QStringLiteral("[BNET] Your CD-Key is for another game.");
        break;
    case 0x210:
        line = QStringLiteral("[BNET] Your expansion CD-Key is invalid.");
        break;
    case 0x211:
        line = QStringLiteral("[BNET] Your expansion CD-Key is in use by ") + Reader.ReadSTRING() +
               QStringLiteral(".");
        break;
    case 0x212:
        line = QStringLiteral("[BNET] Your expansion CD-Key has been banned.");
        break;
    case 0x213:
        line = QStringLiteral("[BNET] Your expansion CD-Key is for another game.");
        break;
    default:
        line = QStringLiteral("[BNET] Unknown response code from 0x51!");
        break;
    }
    WriteChat(Index, Status::Error, line);
    KillSocket(Index);
}

void ConnectionWrapper::Bnls0x09(int Index) {
    const LogonRecord& logon = Logons(Index);
    PacketWriter w;
    w.WriteDWORD(quint32(ProductCode(Bots(Index).Config.Client())));
    w.WriteDWORD(quint32(logon.MpqNumber));
    w.WriteSTRING(logon.ChecksumFormula);
    w.SendPacket(Index, 0x09, true);
}

void ConnectionWrapper::Handle_BnlsVersionCheck(int Index, PacketReader& Reader) {
    if (Reader.ReadDWORD() == 0) {
        // The failed answer stays at the head of the stream; the logon stands
        // still until the watchdog begins it again.
        WriteChat(Index, Status::Error, QStringLiteral("[BNLS] Version check failed."));
        throw streamcutter::StopCutting{};
    }
    const quint32 version = Reader.ReadDWORD();
    const quint32 checksum = Reader.ReadDWORD();
    const QByteArray information = Reader.ReadSTRINGBytes();
    Output_AuthCheck(Index, checksum, version, information);
}

void ConnectionWrapper::refuseVersion(int Index, quint32 Result) {
    const bool local = SettingsWrapper::instance().LocalHashing();
    QString line;
    if (Result == 0x100)
        line = local ? QStringLiteral("[BNET] Your hash files are out of date!")
                     : QStringLiteral("[BNLS] Server has not been updated for new hash files yet!");
    else
        line = local ? QStringLiteral("[BNET] Incorrect version byte specified for this client.")
                     : QStringLiteral("[BNLS] The version byte you specified does not match the "
                                      "hashes found on this server, try switching to local "
                                      "hashing if you are positive the version byte is correct.");
    WriteChat(Index, Status::Error, line);
    KillSocket(Index);
}

// Servers move on to a new client version, and with it a new version byte:
// BNLS knows the byte of the day, so a refusal costs one more try rather than
// a trip to the settings.
bool ConnectionWrapper::askVerbyte(int Index, quint32 Result) {
    LogonRecord& logon = Logons(Index);
    const ConfigWrapper& config = Bots(Index).Config;
    const bool learned = logon.VerbyteLearned;
    logon.VerbyteLearned = false;
    if (learned || config.ServerBNLS().trimmed().isEmpty() || ProductCode(config.Client()) == 0)
        return false;
    logon.VersionRefusal = Result;
    wsBNET(Index).Close();
    if (wsBNLS(Index).State() == SocketControl::Connected) {
        Bnls0x10(Index);
    } else {
        wsBNLS(Index).Close();
        SlotTable::connectTo(wsBNLS(Index), config.ServerBNLS(), 9367);
    }
    return true;
}

void ConnectionWrapper::Bnls0x10(int Index) {
    PacketWriter w;
    w.WriteDWORD(quint32(ProductCode(Bots(Index).Config.Client())));
    w.SendPacket(Index, 0x10, true);
}

void ConnectionWrapper::Handle_BnlsVersionByte(int Index, PacketReader& Reader) {
    LogonRecord& logon = Logons(Index);
    const quint32 refusal = logon.VersionRefusal;
    if (refusal == 0) return; // nobody asked
    logon.VersionRefusal = 0;
    ConfigWrapper& config = Bots(Index).Config;
    const quint32 product = Reader.ReadDWORD();
    const quint32 current = product != 0 ? Reader.ReadDWORD() : 0;
    const quint32 refused = ProductVersions::Of(config);
    if (product == 0 || current == refused || current > 0xFF) {
        refuseVersion(Index, refusal);
        return;
    }
    const QString client = config.Client().toUpper();
    const QString text = ProductVersions::Text(current);
    const bool stored = config.setVerbyte(text) &&
                        RegistryWrapper::instance().WriteSTRING(
                            SettingsWrapper::RootKey() + QStringLiteral("Verbytes"),
                            QString::number(ProfileSheet::productIndex(client)), text) != 0;
    if (!stored) {
        WriteChat(Index, Status::Error,
                  QStringLiteral("[BNLS] The current version byte of ") + client +
                      QStringLiteral(" is ") + text +
                      QStringLiteral(", but it could not be stored: ") + config.writeError() +
                      u'.');
        KillSocket(Index);
        return;
    }
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNLS] The server refused version byte ") +
                  ProductVersions::Text(refused) + QStringLiteral(" of ") + client +
                  QStringLiteral("; stored the current one, ") + text +
                  QStringLiteral(", in the profile and connecting once more."));
    logon.VerbyteLearned = true;
    wsBNET(Index).Close();
    SlotTable::instance().ConnectBot(Index);
}
