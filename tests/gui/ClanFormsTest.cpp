#include "WindowFixture.h"
#include "gui/frmProfileLookup.h"
#include "gui/frmShowInvite.h"
#include "social/ClanPacket.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>

namespace {

class ClanFormsTest : public WindowFixture {};

// Two invitations have two clocks; one left alone closes on its 39th tick
// and answers nothing, the other is accepted with the inviter's name.
TEST_F(ClanFormsTest, AnInvitationCountsDownAndClosesUnansweredOrAnswersWhenClicked) {
    const int slot = onlineSlot(QStringLiteral("Invited"));
    ClanPacket::install();
    wsBNET(slot).sent.clear();
    for (const char* inviter : {"Slow", "Fast"}) {
        PacketWriter w;
        w.WriteDWORD(7);
        w.WriteVOID("DCBA");
        w.WriteSTRING(QStringLiteral("Testers"));
        w.WriteSTRING(QLatin1String(inviter));
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(0x79, w.payload()));
    }
    QList<frmShowInvite*> forms = window->findChildren<frmShowInvite*>();
    ASSERT_EQ(forms.size(), 2);
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
    ASSERT_EQ(wsBNET(slot).sent.size(), 1);
    EXPECT_EQ(wsBNET(slot).sent[0].mid(4), QByteArray("\x07\0\0\0DCBAFast\0\x06", 14));
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
