#include "commands/ChatInput.h"
#include "commands/MacroWrapper.h"
#include "common/ChatFixture.h"
#include "config/TextListFile.h"
#include "gui/ControlPanelPage.h"
#include "gui/frmControlPanel.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

namespace {

// The lists edited in the control panel against a slot in a channel: what
// a panel saves counts from the next chat line, and so does a hand edit of
// the file, which the panel then shows.
class ControlPanelChatTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        QFile::remove(MacroWrapper::fileName());
        slot = loadConnected(QStringLiteral("Listener"));
        Bots(slot).setOnline(true);
        event(7, {}, QStringLiteral("Lobby"));
        for (const char* name : {"Spammer", "Friend"})
            event(1, QLatin1String(name));
    }
    // The tests after these find the lists empty.
    void TearDown() override {
        for (const QString& file :
             {BlockedUsersFile(), MessageFiltersFile(), MacroWrapper::fileName()})
            QFile::remove(file);
        LoadBlocks();
        LoadFilters();
        MacroWrapper::instance().Reload();
    }
    void event(quint32 id, const QString& user, const QString& text = {}) {
        wsBNET(slot).simulateData(chatEventFrame(id, 0, 20, user, text));
    }
    // Puts the text into the panel's box and clicks its Save.
    void saveText(int row, const char* box, const QString& text) {
        panel.selectRow(row);
        panel.findChild<QPlainTextEdit*>(QLatin1String(box))->setPlainText(text);
        const QString save = panel.page(row)->parentWidget()->objectName() + QStringLiteral("Save");
        QTest::mouseClick(panel.findChild<QPushButton*>(save), Qt::LeftButton);
    }
    QString shownText(int row, const char* box) {
        panel.selectRow(row);
        return panel.findChild<QPlainTextEdit*>(QLatin1String(box))->toPlainText();
    }

    frmControlPanel panel;
    int slot = 0;
};

// (That a hand edit of the files counts from the next line is the command
// tests' concern; here the panel shows it.)
TEST_F(ControlPanelChatTest, SavedFiltersBlocksAndMacrosCountFromTheNextLine) {
    saveText(14, "h3dMessages", QStringLiteral("*buy gold*\nhello\n"));
    EXPECT_EQ(ReadTextLines(MessageFiltersFile()), (QStringList{"*buy gold*", "hello"}))
        << "the box replaces the file whole";
    EXPECT_EQ(shownText(14, "h3dMessages"), QStringLiteral("*buy gold*\n"))
        << "a line without a star is no filter";
    saveText(12, "h3bUsers", QStringLiteral("spam*\n"));

    event(5, QStringLiteral("Friend"), QStringLiteral("cheap: buy gold now"));
    event(5, QStringLiteral("Spammer"), QStringLiteral("hi all"));
    event(5, QStringLiteral("Friend"), QStringLiteral("hello there"));
    const QString chat = rtbChat(slot).text();
    EXPECT_FALSE(chat.contains(QStringLiteral("buy gold")));
    EXPECT_FALSE(chat.contains(QStringLiteral("hi all")));
    EXPECT_TRUE(chat.contains(QStringLiteral("hello there")));

    saveText(16, "h3fMacros", QStringLiteral("greet {\nHello all\n/me waves\n}\n"));
    SendUserLine(slot, QStringLiteral("/macro greet"));
    EXPECT_EQ(Bots(slot).Queue, (QStringList{"Hello all", "/me waves"}));

    // Bot > Files: the panel shows a hand edit.
    writeFile(MessageFiltersFile(), "*there*\r\n");
    EXPECT_EQ(shownText(14, "h3dMessages"), QStringLiteral("*there*\n"));
    writeFile(MacroWrapper::fileName(), "greet {\r\nHi again\r\n}\r\n");
    EXPECT_EQ(shownText(16, "h3fMacros"), QStringLiteral("greet {\nHi again\n}\n"));
}

} // namespace
