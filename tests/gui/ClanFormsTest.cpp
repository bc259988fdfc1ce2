#include "WindowFixture.h"
#include "gui/UserListView.h"
#include "gui/frmClanCreator.h"
#include "gui/frmProfileLookup.h"
#include "gui/frmShowInvite.h"
#include "platform/ListModel.h"
#include "social/ClanPacket.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>

namespace {

class ClanFormsTest : public WindowFixture {};

// Two invitations have two clocks; one left alone closes on its 39th tick
// and answers nothing, the other is accepted with the inviter's name.
TEST_F(ClanFormsTest, AnInvitationCountsDownAndClosesUnansweredOrAnswersWhenClicked) {
    const int slot = onlineSlot(QStringLiteral("Invited"));
    ClanPacket::install();
    wsBNET(slot).sent.clear();
    for (const char* inviter : {"Slow", "Fast", "Nay"}) {
        PacketWriter w;
        w.WriteDWORD(7);
        w.WriteVOID("DCBA");
        w.WriteSTRING(QStringLiteral("Testers"));
        w.WriteSTRING(QLatin1String(inviter));
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(0x79, w.payload()));
    }
    QList<frmShowInvite*> forms = window->findChildren<frmShowInvite*>();
    ASSERT_EQ(forms.size(), 3);
    QPointer<frmShowInvite> slow = forms[0];
    frmShowInvite* fast = forms[1];
    // The first tick shows 39, the 39th shows 1 and closes.
    for (int second = 0; second < 38; ++second)
        slow->tick();
    EXPECT_EQ(slow->windowTitle(), "Invited - Clan Invitation (2 seconds remain)");
    EXPECT_EQ(slow->findChild<QLabel*>(QStringLiteral("Ticker"))->text(),
              "You have 2 seconds to respond to this request before it is automatically declined.");
    slow->tick();
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(slow.isNull());
    EXPECT_TRUE(wsBNET(slot).sent.isEmpty());

    fast->findChild<QPushButton*>(QStringLiteral("Command1"))->click();
    forms[2]->findChild<QPushButton*>(QStringLiteral("Command2"))->click();
    ASSERT_EQ(wsBNET(slot).sent.size(), 2);
    EXPECT_EQ(wsBNET(slot).sent[0].mid(4), QByteArray("\x07\0\0\0DCBAFast\0\x06", 14));
    EXPECT_EQ(wsBNET(slot).sent[1].mid(4), QByteArray("\x07\0\0\0DCBANay\0\x04", 13));
}

// A shaman's clan list offers what the server lets a shaman do to each member
// and the panel none of a chieftain's commands; both follow the bot's own rank
// when a status notice about the bot itself changes it.
TEST_F(ClanFormsTest, TheClanListAndPanelOfferWhatTheOwnRankAllows) {
    const int slot = onlineSlot(QStringLiteral("Sham"));
    Bots(slot).Config.setAccount(QStringLiteral("Sham"));
    ClanPacket::install();
    SlotTable::instance().SelectBot(slot);
    const auto arrive = [slot](quint8 id, const PacketWriter& w) {
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(id, w.payload()));
    };
    PacketWriter info;
    info.WriteBYTE(0);
    info.WriteVOID(QByteArray("\0\0qT", 4));
    info.WriteBYTE(3);
    arrive(0x75, info);
    PacketWriter members;
    members.WriteDWORD(0);
    members.WriteBYTE(5);
    for (const auto& [name, rank] :
         {std::pair{"Boss", 4}, {"Sham", 3}, {"Greta", 2}, {"Pete", 1}, {"Newt", 0}}) {
        members.WriteSTRING(QLatin1String(name));
        members.WriteBYTE(quint8(rank));
        members.WriteBYTE(1);
        members.WriteSTRING(QString());
    }
    arrive(0x7D, members);

    auto* list = window->findChild<UserListView*>(QStringLiteral("lvClan"));
    ASSERT_NE(list, nullptr);
    const auto offered = [&](const QString& member) {
        list->setCurrentIndex(list->model()->index(lvClan(slot).find(member) - 1, 0));
        QStringList captions;
        if (QMenu* menu = list->contextMenu())
            for (QAction* action : menu->actions())
                captions << action->text();
        return captions.join(u'|');
    };
    const auto enabled = [&](const char* name) {
        return window->findChild<QWidget*>(QLatin1String(name))->isEnabled();
    };
    // The packet a button of the panel sends.
    const auto click = [&](const char* name) {
        wsBNET(slot).sent.clear();
        window->findChild<QToolButton*>(QLatin1String(name))->click();
        return wsBNET(slot).sent.value(0).mid(1, 1);
    };
    EXPECT_EQ(offered(QStringLiteral("Boss")), QString());
    EXPECT_EQ(offered(QStringLiteral("Sham")), QString());
    EXPECT_EQ(offered(QStringLiteral("Greta")), QStringLiteral("Demote to Peon|Remove from clan"));
    EXPECT_EQ(offered(QStringLiteral("Pete")), QStringLiteral("Promote to Grunt|Remove from clan"));
    EXPECT_EQ(offered(QStringLiteral("Newt")), QStringLiteral("Remove from clan"));
    EXPECT_TRUE(enabled("guiInviteUser"));
    EXPECT_TRUE(enabled("guiLeaveClan"));
    EXPECT_FALSE(enabled("guiDisbandClan"));
    EXPECT_FALSE(enabled("guiChangeChieftain"));
    EXPECT_EQ(click("guiLeaveClan"), QByteArray("\x78"));

    PacketWriter chieftain;
    chieftain.WriteSTRING(QStringLiteral("SHAM"));
    chieftain.WriteBYTE(4);
    chieftain.WriteBYTE(1);
    chieftain.WriteSTRING(QString());
    arrive(0x7F, chieftain);
    EXPECT_EQ(offered(QStringLiteral("Greta")),
              QStringLiteral("Promote to Shaman|Demote to Peon|Remove from clan"));
    EXPECT_TRUE(enabled("guiDisbandClan"));
    EXPECT_FALSE(enabled("guiLeaveClan"));
    EXPECT_EQ(click("guiDisbandClan"), QByteArray("\x73"));
    wsBNET(slot).sent.clear();
    offered(QStringLiteral("Pete"));
    list->contextMenu()->actions().at(0)->trigger();
    offered(QStringLiteral("Greta"));
    list->contextMenu()->actions().at(1)->trigger();
    ASSERT_EQ(wsBNET(slot).sent.size(), 2);
    EXPECT_EQ(wsBNET(slot).sent[0].mid(8), QByteArray("Pete\0\x02", 6));
    EXPECT_EQ(wsBNET(slot).sent[1].mid(8), QByteArray("Greta\0\x01", 7));

    // The creator's status in colour 0 reads white on the dark dialog, and
    // the second step leads back to the first for another search.
    frmClanCreator* creator = frmClanCreator::forSlot(slot, window.get());
    creator->findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("Tq"));
    creator->Command1();
    EXPECT_TRUE(creator->findChild<QLabel*>(QStringLiteral("Step1Result"))
                    ->styleSheet()
                    .contains(QLatin1String("rgb(255, 255, 255)")));
    const auto* steps = creator->findChild<QStackedWidget*>();
    creator->Step2();
    Q_EMIT creator->findChild<QLabel*>(QStringLiteral("lblSearchAgain"))
        ->linkActivated(QStringLiteral("#"));
    EXPECT_EQ(steps->currentWidget()->objectName(), QStringLiteral("picStep1"));
}

TEST_F(ClanFormsTest, OnlyTheBotsOwnProfileCanBeSaved) {
    const int slot = onlineSlot(QStringLiteral("Owner"));
    Bots(slot).Config.setAccount(QStringLiteral("Bob"));
    frmProfileLookup own(slot, QStringLiteral("bob"), {"m", "here", "me"});
    frmProfileLookup other(slot, QStringLiteral("someone"), {});
    EXPECT_TRUE(own.canSave());
    EXPECT_FALSE(other.canSave());
    EXPECT_FALSE(other.findChild<QPushButton*>(QStringLiteral("Command1"))->isEnabled());
    own.findChild<QPushButton*>(QStringLiteral("Command1"))->click();
    ASSERT_FALSE(wsBNET(slot).sent.isEmpty());
    EXPECT_EQ(wsBNET(slot).sent.last()[1], '\x27');
    EXPECT_TRUE(wsBNET(slot).sent.last().endsWith(QByteArray("m\0here\0me\0", 10)))
        << "sex, location, description in their order";
}

} // namespace
