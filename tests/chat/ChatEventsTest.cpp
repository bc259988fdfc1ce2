#include "chat/TimedEvents.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "session/PacketWriter.h"

namespace {

class ChatEventsTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        slot = loadConnected(QStringLiteral("events"));
        Bots(slot).setOnline(true);
        Bots(slot).UniqueAccount = QStringLiteral("Me");
    }
    void event(quint32 id, const QString& user, const QString& text = {}, quint32 flags = 0,
               quint32 ping = 20) {
        wsBNET(slot).simulateData(chatEventFrame(id, flags, ping, user, text));
    }
    QStringList listNames() {
        QStringList names;
        for (int i = 1; i <= lvUsers(slot).count(); ++i)
            names << lvUsers(slot).item(i).tag;
        return names;
    }
    QString chat() { return rtbChat(slot).text(); }
    int slot = 0;
};

} // namespace

// (Joins, leaves, the operators' lines, a new channel's list, whispers both
// ways and a spammer's leave, rejoin and talk are the end-to-end chat test's;
// the order of operators the user list test's.)
TEST_F(ChatEventsTest, GainingOperatorMovesToTheTopAndLosingItOnlyRecolours) {
    event(1, QStringLiteral("alice"), QStringLiteral("RATS 0"));
    event(2, QStringLiteral("op"), QStringLiteral("RATS 0"), 0x02);
    event(2, QStringLiteral("bob"), QStringLiteral("PX3W 0"));
    event(9, QStringLiteral("bob"), QStringLiteral("PX3W 0"), 0x02);
    EXPECT_EQ(listNames(), (QStringList{"bob", "op", "alice"}));
    event(9, QStringLiteral("bob"), QStringLiteral("PX3W 0"), 0x00);
    EXPECT_EQ(listNames(), (QStringList{"bob", "op", "alice"}));
}

TEST_F(ChatEventsTest, AFlagsUpdateOfAStrangerAddsThem) {
    event(9, QStringLiteral("ghost"), QStringLiteral("RATS 0"), 0x10);
    EXPECT_EQ(listNames(), QStringList{"ghost"});
    EXPECT_FALSE(chat().contains(QStringLiteral("operator status")));
}

TEST_F(ChatEventsTest, ServerInformationIsReadByPattern) {
    SettingsWrapper::instance().setHideOfflineFriends(true);
    SettingsWrapper::instance().setHideBanUnban(true);
    event(18, {}, QStringLiteral("12: Someone, offline"));
    event(18, {}, QStringLiteral("Someone was banned by Other"));
    EXPECT_TRUE(chat().isEmpty());
    event(18, {}, QStringLiteral("123: Someone, offline"));
    EXPECT_TRUE(chat().contains(QStringLiteral("[BNET] 123: Someone, offline")));

    Bots(slot).setChannel(QStringLiteral("Home"));
    Bots(slot).Queue << QStringLiteral("waiting line");
    event(18, {}, QStringLiteral("Op kicked you out of the channel!"));
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("/join Home")});
    EXPECT_LT(chat().indexOf(QStringLiteral("Cleared the queue.")),
              chat().indexOf(QStringLiteral("[BNET] Attempting to rejoin...")));
}

TEST_F(ChatEventsTest, JoiningTheVoidAsksToSeeUsersUnlessHidden) {
    SettingsWrapper::instance().setVoidView(false);
    Bots(slot).Config.setClient(QStringLiteral("D2DV"));
    event(7, {}, QStringLiteral("The Void"));
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("/unsquelch *Me")});
    SettingsWrapper::instance().setVoidView(true);
    Bots(slot).Queue.clear();
    event(7, {}, QStringLiteral("The Void"));
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());
}

TEST_F(ChatEventsTest, ABusyMomentOfDifferentUsersIsNoPurge) {
    tickcount::ManualClock clock(100000);
    SettingsWrapper::instance().setFloodMode(1000);
    for (const char* name : {"leaver", "talker"})
        event(1, QString::fromLatin1(name), QStringLiteral("RATS 0"));
    clock.advance(1100);
    Bots(slot).ShowDelayedEvent(slot);
    ASSERT_EQ(lvUsers(slot).count(), 2);
    EXPECT_EQ(lvUsers(slot).index(0, 1).data(ListModel::TagRole).toString(),
              QStringLiteral("RATS 0"))
        << "the ping's column keeps the statstring";

    // One leaves, another joins, a third talks, all at once: each is shown.
    event(3, QStringLiteral("leaver"));
    event(2, QStringLiteral("joiner"), QStringLiteral("RATS 0"));
    event(5, QStringLiteral("talker"), QStringLiteral("just chatting"));
    clock.advance(1100);
    Bots(slot).ShowDelayedEvent(slot);
    EXPECT_EQ(Bots(slot).DelayCount(), 0);
    EXPECT_TRUE(chat().contains(QStringLiteral("just chatting")));
    EXPECT_EQ(listNames(), (QStringList{"talker", "joiner"}));

    // A talk before the leave and rejoin still makes a burst of one user.
    event(5, QStringLiteral("joiner"), QStringLiteral("first words"));
    event(3, QStringLiteral("joiner"));
    event(2, QStringLiteral("Joiner"), QStringLiteral("RATS 0"));
    clock.advance(1100);
    Bots(slot).ShowDelayedEvent(slot);
    EXPECT_EQ(Bots(slot).DelayCount(), 0);
    EXPECT_FALSE(chat().contains(QStringLiteral("first words")));
}

TEST_F(ChatEventsTest, AFloodCostsTheOldestHeldEventsWithOneLineAndGivesItsMemoryBack) {
    tickcount::ManualClock clock(100000);
    SettingsWrapper::instance().setFloodMode(1000);
    const int limit = BotElement::kHeldEventLimit;
    for (int n = 0; n < 2 * limit; ++n)
        event(5, QStringLiteral("flooder"), QStringLiteral("line %1").arg(n));
    EXPECT_LE(Bots(slot).DelayCount(), limit);
    EXPECT_EQ(Bots(slot).takeDroppedEvents(), 0) << "told once the flood is over";
    // All that is shown, though the view empties itself when full.
    QString shownText;
    QObject::connect(&rtbChat(slot), &ChatDocument::changed, &rtbChat(slot),
                     [&](int from) { shownText += rtbChat(slot).textFrom(from); });
    clock.advance(1100);
    TimedEvents& timers = TimedEvents::instance();
    for (int tick = 0; tick < 1000 && Bots(slot).DelayCount() > 0; ++tick)
        timers.delayedEventsTick();
    timers.delayedEventsTick();
    EXPECT_EQ(Bots(slot).DelayCount(), 0);
    // The newest are shown, the oldest are not, and one line says how many went.
    EXPECT_TRUE(shownText.contains(QStringLiteral("line %1\r\n").arg(2 * limit - 1)));
    EXPECT_FALSE(shownText.contains(QStringLiteral("line 0\r\n")));
    const int shown = int(shownText.count(QStringLiteral("flooder")));
    EXPECT_EQ(shownText.count(QStringLiteral("Chat flood: dropped the ")), 1);
    EXPECT_TRUE(shownText.contains(QStringLiteral("Chat flood: dropped the %1 oldest held events")
                                       .arg(2 * limit - shown)));
}
