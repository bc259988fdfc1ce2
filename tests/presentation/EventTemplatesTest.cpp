#include "presentation/EventTemplates.h"

#include "commands/AliasesAndGroups.h"
#include "common/ChatFixture.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "presentation/UserColors.h"

class EventTemplatesTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        slot = SlotTable::instance().LoadProfile(QStringLiteral("templates"));
        ThemeRecord& t = CurrentTheme();
        for (size_t digit = 0; digit < 10; ++digit)
            t.custom[digit] = 0x100 + quint32(digit);
        t.interface.ForeColor = 0x777777;
        t.userInChat.Normal = 0x0A0A0A;
    }

    ChatDocument& view() { return rtbChat(slot); }
    // The line as (colour, text) runs, without the line end.
    std::vector<std::pair<quint32, QString>> runs() {
        std::vector<std::pair<quint32, QString>> out;
        for (const TextRun& run : view().runs())
            out.emplace_back(run.format.color, run.text);
        if (!out.empty() && out.back().second.endsWith(QStringLiteral("\r\n"))) {
            out.back().second.chop(2);
            if (out.back().second.isEmpty()) out.pop_back();
        }
        return out;
    }
    QString print(const QString& templ, const QString& user = QStringLiteral("bob"),
                  const QString& message = {}, qint32 ping = 0, qint32 flags = 0) {
        view().clear();
        ParseOutput(slot, view(), templ, user, message, QStringLiteral("RATS 0 0 0 0"), ping, flags,
                    QStringLiteral("Op Test"), 0x03);
        return view().text();
    }

    int slot = 0;
};

using Runs = std::vector<std::pair<quint32, QString>>;

TEST_F(EventTemplatesTest, MarksColourTheirParts) {
    print(QStringLiteral("#1one#9xnine#Zzed"));
    EXPECT_EQ(runs(), (Runs{{0x101, "one"}, {0x109, "xnine"}, {0x777777, "zed"}}));

    // "#user" and "#A" are the same mark; the rest of the part is text.
    print(QStringLiteral("#user<%user>#Asomething"));
    EXPECT_EQ(runs(), (Runs{{0x0A0A0A, "<bob>something"}}));
}

TEST_F(EventTemplatesTest, WhatTheCutsLeave) {
    EXPECT_EQ(print(QStringLiteral("text #0more")), QStringLiteral("more\r\n"));
    EXPECT_EQ(print(QStringLiteral("a##b")), QStringLiteral("\r\n")) << "## is an empty part";
    EXPECT_EQ(print(QStringLiteral("#1")), QStringLiteral("\r\n"));
    EXPECT_EQ(print(QStringLiteral("hello")), QStringLiteral("\r\n"));

    SettingsWrapper::instance().setTimeStamp(true);
    CurrentTheme().time = QStringLiteral("[stamp] ");
    EXPECT_EQ(print(QStringLiteral("hello")), QStringLiteral("[stamp] \r\n"));
    EXPECT_EQ(print(QString()), QString()) << "an empty template prints not even a timestamp";
}

TEST_F(EventTemplatesTest, TokensRunInTheirOrderOverWhatIsAlreadyThere) {
    EXPECT_EQ(print(QStringLiteral("#0%ping_status %ping_icon %ping"), QStringLiteral("x"),
                    QString(), 250),
              QStringLiteral("Low Lime 250ms\r\n"));
    EXPECT_EQ(print(QStringLiteral("#0%flags_display=%flags %channel_flags:%channel"),
                    QStringLiteral("x"), QString(), 0, 3),
              QStringLiteral("Rep + Mod=3 Moderated + Public:Op Test\r\n"));
    // A message is open to the tokens behind %message, not to those before.
    EXPECT_EQ(print(QStringLiteral("#0%message"), QStringLiteral("x"),
                    QStringLiteral("%ping and %user%sp"), 42),
              QStringLiteral("42ms and %user%sp\r\n"));
    // A user named "%ping" is shown as the ping.
    EXPECT_EQ(print(QStringLiteral("#0<%user>"), QStringLiteral("%ping"), QString(), 7),
              QStringLiteral("<7ms>\r\n"));
    EXPECT_EQ(print(QStringLiteral("#0%client|%stats|%sp|")),
              QStringLiteral("STAR|StarCraft (0 wins)| |\r\n"));
}

TEST_F(EventTemplatesTest, AnAliasIsShownWhileTheColourAndGroupFollowThePlainName) {
    CreateAlias(QStringLiteral("TheBoss"), {QStringLiteral("bob")});
    CreateGroup(QStringLiteral("Ops"), {QStringLiteral("Bob")}, 0x123456, QStringLiteral("[op]"));
    view().clear();
    ParseOutput(slot, view(), QStringLiteral("#A%group<%user>"),
                EventUser::fromRaw(QStringLiteral("Hero*bob")));
    EXPECT_EQ(runs(), (Runs{{0x123456, "[op] <TheBoss>"}}));
    EXPECT_EQ(print(QStringLiteral("#0%group%user"), QStringLiteral("ann")),
              QStringLiteral("ann\r\n"))
        << "no group, no blank";

    // Blocked and Yourself too are matters of the plain name.
    CurrentTheme().userInChat.Blocked = 0xB10C;
    AddBlock(QStringLiteral("bob"));
    view().clear();
    ParseOutput(slot, view(), QStringLiteral("#A%user"), EventUser::fromRaw(QStringLiteral("bob")));
    EXPECT_EQ(runs(), (Runs{{0xB10C, "TheBoss"}}));
}

TEST_F(EventTemplatesTest, DefaultTemplatesOfTheTheme) {
    const ChatEventTemplates& e = CurrentTheme().events;
    EXPECT_EQ(print(e.join, QStringLiteral("bob"), QString(), 120, 0),
              QStringLiteral("bob has joined using StarCraft (0 wins), with ping of 120ms "
                             "(Excellent) and flags of Normal.\r\n"));
    EXPECT_EQ(print(e.emote, QStringLiteral("bob"), QStringLiteral("waves")),
              QStringLiteral("<bob> waves\r\n"));
    EXPECT_EQ(runs(), (Runs{{0x0A0A0A, "<bob>"}, {0x101, " waves"}}));
}

class UserColorTest : public EventTemplatesTest {
protected:
    void SetUp() override {
        EventTemplatesTest::SetUp();
        CurrentTheme().userInChat = {1, 2, 3, 4, 5, 6, 7, 8}; // Normal ... Yourself
        CurrentTheme().userList = {11, 12, 13, 14, 15, 16, 17, 18};
        Bots(slot).UniqueAccount = QStringLiteral("Me");
    }
    quint32 color(const QString& user, qint32 flags, bool inChat = true) {
        return GetUserColor(slot, user, flags, inChat);
    }
};

TEST_F(UserColorTest, TheFirstRuleThatHoldsDecides) {
    AddBlock(QStringLiteral("me"));
    AddBlock(QStringLiteral("troll"));
    EXPECT_EQ(color(QStringLiteral("Hero*me"), 0x01), 8u) << "Yourself beats Blocked";
    EXPECT_EQ(color(QStringLiteral("troll#2"), 0x01), 5u);
    EXPECT_EQ(color(QStringLiteral("rep"), 0x03), 3u) << "a rep who is operator too";
    EXPECT_EQ(color(QStringLiteral("quiet"), 0x22), 4u);
    EXPECT_EQ(color(QStringLiteral("op"), 0x02), 2u);
    EXPECT_EQ(color(QStringLiteral("op"), 0x02, false), 12u);
    EXPECT_EQ(color(QStringLiteral("anyone"), 0), 1u);
}

TEST_F(UserColorTest, GroupsColourUnlessTheirColourIsMinusOne) {
    tickcount::ManualClock clock(5000000);
    Bots(slot).userAdd(QStringLiteral("painted"), 0, 0, {}, 0);
    Bots(slot).userAdd(QStringLiteral("plain"), 0, 0, {}, 0);
    CreateGroup(QStringLiteral("Painters"), {QStringLiteral("painted")}, 0x123456, {});
    CreateGroup(QStringLiteral("Colourless"), {QStringLiteral("plain")}, -1, {});
    clock.advance(600000);
    EXPECT_EQ(color(QStringLiteral("Painted"), 0), 0x123456u);
    EXPECT_EQ(color(QStringLiteral("plain"), 0), 6u) << "ten minutes silent";
    clock.advance(600000);
    EXPECT_EQ(color(QStringLiteral("plain"), 0), 7u) << "twenty minutes silent";
    EXPECT_EQ(color(QStringLiteral("stranger"), 0), 1u) << "not in the channel: no idle rule";
}

TEST_F(UserColorTest, RecolouringFollowsBlocksInTheListsOfOnlineProfiles) {
    Bots(slot).setOnline(true);
    Bots(slot).userAdd(QStringLiteral("bob"), 0, 0, {}, 0);
    ListItem item = ListItem::withText(QStringLiteral("bob"));
    item.tag = QStringLiteral("bob");
    item.color = 11;
    lvUsers(slot).add(item);
    AddBlock(QStringLiteral("BOB"));
    EXPECT_EQ(lvUsers(slot).item(1).color, 15u);
    RemoveBlock(QStringLiteral("bob"));
    EXPECT_EQ(lvUsers(slot).item(1).color, 11u);
}
