#include "chat/BotElement.h"
#include "config/FileHandler.h"
#include "platform/Cp1252.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "session/ConnectionWrapper.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

#include <QTimeZone>

namespace {

const QStringList& profileKeys() {
    static const QStringList keys{QStringLiteral("profile\\sex"),
                                  QStringLiteral("profile\\location"),
                                  QStringLiteral("profile\\description")};
    return keys;
}

// The classic products keep a game record beside the account's own facts.
bool keepsRecord(const QString& client) {
    const QString c = client.toUpper();
    return c == QLatin1String("STAR") || c == QLatin1String("SEXP") || c == QLatin1String("W2BN");
}

QStringList accountKeys(const QString& client) {
    QStringList keys{QStringLiteral("system\\username"), QStringLiteral("system\\account created"),
                     QStringLiteral("system\\last logon"), QStringLiteral("system\\last logoff"),
                     QStringLiteral("system\\time logged")};
    if (keepsRecord(client)) {
        const QString record = QStringLiteral("record\\") + client + QStringLiteral("\\0\\");
        for (const char* field : {"last game", "last game result", "wins", "losses", "disconnects"})
            keys << record + QLatin1String(field);
    }
    return keys;
}

// A Windows file time as "high low" in local time; "N/A" when it came too short.
QString fileTimeText(const QString& text) {
    if (text.size() < 3) return QStringLiteral("N/A");
    // 100 ns steps since 1601, the Unix epoch being 11644473600 s later.
    const qint64 ms = ParseFileTime(text) / 10000 - 11644473600000LL;
    return FormatSystemTime(QDateTime::fromMSecsSinceEpoch(ms, QTimeZone::utc()).toLocalTime());
}

void writeLabelled(int Index, Status labelColour, const QString& label, const QString& value) {
    WriteChat(Index,
              {{StatusColor(labelColour), label}, {StatusColor(Status::Information), value}});
}

} // namespace

void ConnectionWrapper::Output_ProfileRequest(int Index, const QString& Account) {
    BotElement& bot = Bots(Index);
    // The reply carries no name: LastProfile tells whose it is.
    bot.LastProfile = Account;
    bot.ProfileType = 0;
    PacketWriter w;
    w.WriteDWORD(1);
    w.WriteDWORD(quint32(profileKeys().size()));
    w.WriteDWORD(GetTickCount());
    w.WriteSTRING(Account);
    for (const QString& key : profileKeys())
        w.WriteSTRING(key);
    w.SendPacket(Index, 0x26);
}

void ConnectionWrapper::Output_AccountInfoRequest(int Index) {
    BotElement& bot = Bots(Index);
    bot.ProfileType = 1;
    const QStringList keys = accountKeys(bot.Config.Client());
    PacketWriter w;
    w.WriteDWORD(1);
    w.WriteDWORD(quint32(keys.size()));
    w.WriteDWORD(GetTickCount());
    w.WriteSTRING(bot.Config.Account());
    for (const QString& key : keys)
        w.WriteSTRING(key);
    w.SendPacket(Index, 0x26);
}

void ConnectionWrapper::Output_WriteProfile(int Index, const QStringList& Values) {
    PacketWriter w;
    w.WriteDWORD(1);
    w.WriteDWORD(quint32(profileKeys().size()));
    w.WriteSTRING(Bots(Index).Config.Account());
    for (const QString& key : profileKeys())
        w.WriteSTRING(key);
    for (int i = 0; i < profileKeys().size(); ++i)
        w.WriteSTRING(Values.value(i));
    w.SendPacket(Index, 0x27);
}

bool ConnectionWrapper::IsOwnProfile(int Index, const QString& Account) {
    return Account.toLower() == Bots(Index).Config.Account().toLower();
}

void ConnectionWrapper::Handle_ProfileKeys(int Index, PacketReader& Reader) {
    BotElement& bot = Bots(Index);
    Reader.Skip(12);
    if (bot.ProfileType != 1) {
        QStringList values;
        for (int i = 0; i < profileKeys().size(); ++i)
            values << Reader.ReadSTRING();
        // A window shows the form; without one the fields are lines of the chat.
        if (SlotTable::instance().showProfile(Index, bot.LastProfile, values)) return;
        WriteChat(Index, Status::Warning, QStringLiteral("Profile of ") + bot.LastProfile + u':');
        const char* const labels[] = {"Sex: ", "Location: ", "Description: "};
        for (int i = 0; i < values.size(); ++i)
            writeLabelled(Index, Status::Information, QLatin1String(labels[i]), values[i]);
        return;
    }
    bot.ProfileType = 0;
    Parse_AccountKeys(Index, cp1252::decode(Reader.ReadRemains()));
    writeLabelled(Index, Status::Warning, QStringLiteral("Account Information for: "),
                  bot.UniqueAccount);
    writeLabelled(Index, Status::Information, QStringLiteral("Account Created: "),
                  bot.AccountCreated);
    const bool record = keepsRecord(bot.Config.Client());
    if (record)
        writeLabelled(Index, Status::Information, QStringLiteral("Last Game Played: "),
                      bot.LastGame + QStringLiteral(" (") + bot.LastGameResult + u')');
    writeLabelled(Index, Status::Information, QStringLiteral("Last Logon: "), bot.LastLogon);
    writeLabelled(Index, Status::Information, QStringLiteral("Last Logoff: "), bot.LastLogoff);
    if (record)
        writeLabelled(Index, Status::Information, QStringLiteral("Record: "),
                      QString::number(bot.RecordWins) + QStringLiteral(" wins, ") +
                          QString::number(bot.RecordLosses) + QStringLiteral(" losses, ") +
                          QString::number(bot.RecordDiscs) + QStringLiteral(" disconnects."));
    writeLabelled(Index, Status::Information, QStringLiteral("Time Logged: "), bot.AccountLogged);
}

void ConnectionWrapper::Parse_AccountKeys(int Index, const QString& Text) {
    const QStringList values = Text.split(QChar(0));
    if (values.size() - 1 <= 3) return;
    BotElement& bot = Bots(Index);
    bot.AccountCreated = fileTimeText(values.value(1));
    bot.LastLogon = fileTimeText(values.value(2));
    bot.LastLogoff = fileTimeText(values.value(3));
    const QString logged = values.value(4);
    if (logged.size() < 3) {
        bot.AccountLogged = QStringLiteral("N/A");
    } else {
        qint64 seconds = LeadingNumber(logged);
        bot.AccountLogged = FormatSeconds(seconds);
    }
    bot.LastGame = QStringLiteral("Never Played");
    bot.LastGameResult = QStringLiteral("N/A");
    bot.RecordWins = bot.RecordLosses = bot.RecordDiscs = 0;
    if (!keepsRecord(bot.Config.Client())) return;
    if (values.value(5).size() >= 3) {
        bot.LastGame = fileTimeText(values.value(5));
        bot.LastGameResult = values.value(6);
    }
    bot.RecordWins = LeadingNumber(values.value(7));
    bot.RecordLosses = LeadingNumber(values.value(8));
    bot.RecordDiscs = LeadingNumber(values.value(9));
}
