#include "gui/SendBox.h"

#include "DialogAnswers.h"
#include "WindowFixture.h"
#include "commands/ChatInput.h"

#include <QAction>
#include <QClipboard>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

namespace {

class SendBoxTest : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        SettingsWrapper::instance().setEncryption(false);
        box = window->cboSend();
        edit = box->lineEdit();
        edit->setFocus();
    }
    void type(const QString& text) { QTest::keyClicks(edit, text); }
    void paste(const QString& clipboard) {
        QApplication::clipboard()->setText(clipboard);
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    }
    SendBox* box = nullptr;
    QLineEdit* edit = nullptr;
};

// The console takes no line: Enter and a paste of lines leave the text.
TEST_F(SendBoxTest, TheConsoleSendsNothingAndKeepsTheText) {
    SlotTable::instance().SelectBot(0);
    type(QStringLiteral("hello"));
    QTest::keyClick(edit, Qt::Key_Return);
    paste(QStringLiteral("a\r\nb"));
    EXPECT_EQ(box->currentText(), QStringLiteral("hello"));
    EXPECT_TRUE(Bots(0).Queue.isEmpty());
    EXPECT_EQ(box->count(), 0);
}

// What is sent is what was typed, even the start of an earlier line; the
// lines are then a key away, newest first.
TEST_F(SendBoxTest, EnterQueuesWhatWasTypedAndTheArrowsWalkTheHistory) {
    const int slot = onlineSlot(QStringLiteral("Typist"));
    SlotTable::instance().SelectBot(slot);
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(Bots(slot).Queue.isEmpty()) << "an empty box sends nothing";
    const QStringList lines = {"Audit test line one", "Audit", "/p Istmir", "/p"};
    for (const QString& line : lines) {
        type(line);
        QTest::keyClick(edit, line == u"Audit" ? Qt::Key_Enter : Qt::Key_Return);
    }
    EXPECT_EQ(Bots(slot).Queue, lines);
    EXPECT_TRUE(box->currentText().isEmpty());
    ASSERT_EQ(box->count(), 4);
    EXPECT_EQ(box->itemText(0), QStringLiteral("/p"));
    EXPECT_EQ(box->itemText(3), QStringLiteral("Audit test line one"));
    QTest::keyClick(edit, Qt::Key_Up);
    EXPECT_EQ(box->currentText(), QStringLiteral("/p"));
    QTest::keyClick(edit, Qt::Key_Up);
    QTest::keyClick(edit, Qt::Key_Up);
    EXPECT_EQ(box->currentText(), QStringLiteral("Audit"));
    QTest::keyClick(edit, Qt::Key_Up);
    QTest::keyClick(edit, Qt::Key_Up);
    EXPECT_EQ(box->currentText(), QStringLiteral("Audit test line one")) << "the oldest stays";
    QTest::keyClick(edit, Qt::Key_Down);
    QTest::keyClick(edit, Qt::Key_Down);
    EXPECT_EQ(box->currentText(), QStringLiteral("/p Istmir"));
    QTest::keyClick(edit, Qt::Key_Down);
    QTest::keyClick(edit, Qt::Key_Down);
    EXPECT_TRUE(box->currentText().isEmpty());
}

TEST_F(SendBoxTest, TheMenusMessageTakesTheSendQueue) {
    const int slot = onlineSlot(QStringLiteral("Trayed"));
    SlotTable::instance().SelectBot(slot);
    const auto answer = answerNext<QInputDialog>([](QInputDialog* box) {
        box->setTextValue(QStringLiteral("from the tray"));
        box->accept();
    });
    window->findChild<QAction*>(QStringLiteral("mnuSendMessage"))->trigger();
    EXPECT_TRUE(QTest::qWaitFor([slot] { return !Bots(slot).Queue.isEmpty(); }, 2000));
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("from the tray")});
    // The same items serve a desktop without a tray, in the Bot menu.
    auto* forAll = window->findChild<QAction*>(QStringLiteral("mnuSendMessage4All"));
    EXPECT_TRUE(window->mnuSysTray()->actions().contains(forAll));
    EXPECT_TRUE(window->findChild<QMenu*>(QStringLiteral("mnuBot"))->actions().contains(forAll));
}

TEST_F(SendBoxTest, APasteOfSeveralLinesSendsEachLine) {
    const int slot = onlineSlot(QStringLiteral("Paster"));
    SlotTable::instance().SelectBot(slot);
    type(QStringLiteral("draft"));
    paste(QStringLiteral("one\r\ntwo\r\nthree"));
    EXPECT_EQ(Bots(slot).Queue, (QStringList{"one", "two", "three"}));
    EXPECT_TRUE(box->currentText().isEmpty());

    // Line ends of this desktop count as well; empty lines send nothing.
    Bots(slot).Queue.clear();
    paste(QStringLiteral("four\n\nfive\n"));
    EXPECT_EQ(Bots(slot).Queue, (QStringList{"four", "five"}));

    // One line without a line end only fills the box, at the caret.
    Bots(slot).Queue.clear();
    type(QStringLiteral("say "));
    paste(QStringLiteral("six"));
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());
    EXPECT_EQ(box->currentText(), QStringLiteral("say six"));
}

TEST_F(SendBoxTest, CtrlKeysPutColourEscapesAtTheCaret) {
    type(QStringLiteral("ab"));
    QTest::keyClick(edit, Qt::Key_Left);
    QTest::keyClick(edit, Qt::Key_I, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_End);
    QTest::keyClick(edit, Qt::Key_B, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_U, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Tab);
    EXPECT_EQ(box->currentText(), QStringLiteral("a\u00FFcIb\u00FFcB\u00FFcU\u00FFcS"));
    EXPECT_TRUE(edit->hasFocus()) << "the tab key is swallowed, focus stays";
}

// (Which lines are coded is the chat input's test.)
TEST_F(SendBoxTest, TheHistoryKeepsTheCodedFormWhenEncryptionIsOn) {
    const int slot = onlineSlot(QStringLiteral("Secret"));
    SlotTable::instance().SelectBot(slot);
    SettingsWrapper::instance().setEncryption(true);
    type(QStringLiteral("abc"));
    QTest::keyClick(edit, Qt::Key_Return);
    SettingsWrapper::instance().setEncryption(false);
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("\u00AB\u00DA\u00DB\u00DC")});
    EXPECT_EQ(box->itemText(0), Bots(slot).Queue.value(0));
}

TEST_F(SendBoxTest, ALineWithNobodyToAnswerComesBackToTheBox) {
    const int slot = onlineSlot(QStringLiteral("Answerer"));
    SlotTable::instance().SelectBot(slot);
    SendChatLine(slot, QStringLiteral("/r are you there"));
    EXPECT_EQ(box->currentText(), QStringLiteral("/r are you there"));
    // Only the box of the profile on screen takes it.
    const int other = onlineSlot(QStringLiteral("Elsewhere"));
    SendChatLine(other, QStringLiteral("/fwd hello"));
    EXPECT_EQ(box->currentText(), QStringLiteral("/r are you there"));
}

TEST_F(SendBoxTest, TheKeyboardsHideAndShowCommandsMoveTheWindow) {
    const int slot = onlineSlot(QStringLiteral("Hider"));
    SlotTable::instance().SelectBot(slot);
    type(QStringLiteral("/hide"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();
    // The test's desktop has no tray to come back from: hidden, the window
    // goes to the task bar.
    EXPECT_TRUE(window->isMinimized());
    SendUserLine(slot, QStringLiteral("/show"));
    QCoreApplication::processEvents();
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());
}

} // namespace
