#include "social/ClanPacket.h"

#include "common/ChatFixture.h"
#include "platform/ListModel.h"

namespace {

class ClanPacketTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        ClanPacket::install();
        slot = loadConnected(QStringLiteral("clansman"));
        Bots(slot).setOnline(true);
        Bots(slot).Config.setAccount(QStringLiteral("Clansman"));
        wsBNET(slot).sent.clear();
    }
    void joinClan(quint8 rank) {
        Bots(slot).setClanTag(ClanPacket::CreateClanTag(QStringLiteral("Tst")));
        Bots(slot).setClanRank(rank);
    }
    QList<int> sentIds() const {
        QList<int> ids;
        for (const QByteArray& frame : wsBNET(slot).sent)
            ids << quint8(frame[1]);
        return ids;
    }
    QString lastLine() const {
        return rtbChat(slot).text().split(QStringLiteral("\r\n"), Qt::SkipEmptyParts).last();
    }
    void arrive(quint8 id, const PacketWriter& w) {
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(id, w.payload()));
    }
    int slot = 0;
};

TEST_F(ClanPacketTest, LocalChecksRefuseWithoutSendingAndTagsTravelTurnedRound) {
    ClanPacket::Output_Disband(slot);
    EXPECT_EQ(lastLine(), "[BNET] Cannot perform clan action, you are not the member of a clan.");
    joinClan(1);
    ClanPacket::Output_Invite(slot, {});
    EXPECT_EQ(lastLine(), "[BNET] Cannot invite null username.");
    joinClan(2);
    ClanPacket::Output_Invite(slot, QStringLiteral("someone"));
    EXPECT_EQ(lastLine(),
              "[BNET] Only Cheiftain's and Shaman's can invite users to join the clan.");
    joinClan(3);
    ClanPacket::Output_SetRank(slot, QStringLiteral("other"), 3);
    EXPECT_EQ(
        lastLine(),
        "[BNET] Cannot change rank, you must be a chieftain to change another shamans' rank.");
    EXPECT_TRUE(wsBNET(slot).sent.isEmpty());

    ClanPacket::Output_Invite(slot, QStringLiteral("someone"));
    EXPECT_EQ(lastLine(), "[BNET] Invitation sent to someone to join Clan Tst.") << "a shaman";
    ClanPacket::Output_SetRank(slot, QStringLiteral("other"), 2);
    EXPECT_EQ(lastLine(), "[BNET] Attempting to change other's rank to Grunt.");
    ClanPacket::Output_Quit(slot);
    ASSERT_EQ(sentIds(), QList<int>({0x77, 0x7A, 0x78}));
    // The quit names the account as configured, behind the cookie.
    EXPECT_EQ(wsBNET(slot).sent[2].mid(8), QByteArray("Clansman", 9));

    // Right-aligned: the DWORD holds the text big-endian. Either padding reads back.
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("AB")), QString::fromLatin1("\0\0BA", 4));
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("ABC")), QString::fromLatin1("\0CBA", 4));
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("ABCD")), QStringLiteral("DCBA"));
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("ABCDE")), QStringLiteral("EDCB"));
    EXPECT_EQ(ClanPacket::ShowClanTag(QString::fromLatin1("BA\0\0", 4)), QStringLiteral("AB"));
    EXPECT_EQ(ClanPacket::ShowClanTag(QString::fromLatin1("\0\0BA", 4)), QStringLiteral("AB"));
}

TEST_F(ClanPacketTest, MemberListPutsTheChieftainFirstAndNoticesKeepItCurrent) {
    joinClan(4);
    PacketWriter list;
    list.WriteDWORD(0);
    list.WriteBYTE(3);
    for (const auto& [name, rank] : {std::pair{"Anna", 0}, {"Boss", 4}, {"Carl", 2}}) {
        list.WriteSTRING(QLatin1String(name));
        list.WriteBYTE(quint8(rank));
        list.WriteBYTE(1);
        list.WriteSTRING(QString());
    }
    arrive(0x7D, list);
    ListModel& clan = lvClan(slot);
    ASSERT_EQ(clan.count(), 3);
    EXPECT_EQ(clan.item(1).text, "Boss");
    EXPECT_EQ(clan.item(2).iconKey, "ClanRank1");
    EXPECT_EQ(clan.item(2).toolTip, "Anna is a New Peon.");

    // A member who joined after the list came is told by a status notice alone.
    PacketWriter newcomer;
    newcomer.WriteSTRING(QStringLiteral("Dora"));
    newcomer.WriteBYTE(0);
    newcomer.WriteBYTE(1);
    newcomer.WriteSTRING(QString());
    arrive(0x7F, newcomer);
    ASSERT_EQ(clan.count(), 4);
    EXPECT_EQ(clan.item(4).toolTip, "Dora is a New Peon.");

    // (Being removed oneself is the end-to-end social test's.) A removal
    // notice that says no keeps the clan.
    PacketWriter notRemoved;
    notRemoved.WriteBYTE(0);
    arrive(0x76, notRemoved);
    PacketWriter gone;
    gone.WriteSTRING(QStringLiteral("Carl"));
    arrive(0x7E, gone);
    EXPECT_FALSE(Bots(slot).ClanTag().isEmpty());
    EXPECT_EQ(clan.count(), 3);
    EXPECT_EQ(clan.find(QStringLiteral("Carl")), 0);
    EXPECT_FALSE(rtbChat(slot).text().contains(QLatin1String("Unhandled")));
}

TEST_F(ClanPacketTest, AccountReportShowsShortValuesAsNotAvailable) {
    Bots(slot).Config.setClient(QStringLiteral("WAR3"));
    Bots(slot).ProfileType = 1;
    PacketWriter w;
    w.WriteVOID(QByteArray(12, '\0'));
    for (const char* value : {"Clansman", "", "30000000 0", "x", "0"})
        w.WriteSTRING(QLatin1String(value));
    arrive(0x26, w);
    const BotElement& bot = Bots(slot);
    EXPECT_EQ(bot.AccountCreated, "N/A");
    EXPECT_NE(bot.LastLogon, "N/A");
    EXPECT_EQ(bot.LastLogoff, "N/A");
    EXPECT_EQ(bot.AccountLogged, "N/A");
    EXPECT_EQ(bot.ProfileType, 0);
    EXPECT_EQ(lastLine(), "Time Logged: N/A");
}

} // namespace
