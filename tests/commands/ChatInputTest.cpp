#include "commands/ChatInput.h"

#include "common/ChatFixture.h"
#include "platform/Cp1252.h"
#include "plugins/PluginHost.h"

#include <QSignalSpy>

namespace {

class ChatInputTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        PluginHost::instance().clear();
        SettingsWrapper::instance().setEncryption(false);
        slot = loadConnected(QStringLiteral("typist"));
        BotElement& bot = Bots(slot);
        bot.setOnline(true);
        bot.UniqueAccount = QStringLiteral("Typist");
        bot.Config.setAccount(QStringLiteral("Typist"));
        bot.Config.setClient(QStringLiteral("STAR"));
        rtbChat(slot).clear();
        wsBNET(slot).sent.clear();
    }
    void TearDown() override { PluginHost::instance().clear(); }

    // The string fields of each packet a typed line sent, as "0xID text|text".
    QStringList chatLines(const QString& line) {
        wsBNET(slot).sent.clear();
        SendChatLine(slot, line);
        QStringList packets;
        for (const QByteArray& frame : wsBNET(slot).sent) {
            QStringList fields;
            for (const QByteArray& field : frame.mid(4).split('\0'))
                fields << cp1252::decode(field);
            fields.removeLast();
            packets << QStringLiteral("0x%1 ").arg(quint8(frame[1]), 2, 16, QChar(u'0')) +
                           fields.join(u'|');
        }
        return packets;
    }

    int slot = 0;
};

// (The code of "abc" is the send box's test.)
TEST(ChatCodec, MovesLettersAndDigitsBehindTheMarker) {
    QString all;
    for (char16_t c = 1; c < 128; ++c)
        all += QChar(c);
    QString coded = all;
    EncryptChat(coded);
    DecryptChat(coded);
    EXPECT_EQ(coded, all);
    // Any first character is the marker to decoding.
    QString other = QString(QChar(164)) + QChar(192) + u' ' + QChar(253);
    DecryptChat(other);
    EXPECT_EQ(other, QStringLiteral("A 9"));
}

// Each typed line and the packets it sends ("" for none), for a Diablo II bot.
TEST_F(ChatInputTest, TypedLinesAndThePacketsTheySend) {
    Bots(slot).Config.setClient(QStringLiteral("D2XP"));
    const std::pair<QString, const char*> cases[] = {
        // Whispers reach accounts, not characters, unless a realm is named.
        {"/w bob hi  there", "0x0e /w *bob hi  there"},
        {"/W bob hi", "0x0e /W *bob hi"},
        {"/w bob", "0x0e /w bob"},
        {"/w *bob hi", "0x0e /w *bob hi"},
        {"/msg bob@USEast hi", "0x0e /msg bob@USEast hi"},
        {"/w Sorc*bob@Europe hi", "0x0e /w *bob@Europe hi"},
        {"/w Sorc*bob@europe hi", "0x0e /w *Sorc*bob@europe hi"},
        {"/whisp bob hi", "0x0e /whisp bob hi"},
        // Line ends and NULs are taken out; what is left of an empty line is nothing.
        {QStringLiteral("\r\n\0"), ""},
        {"hel\nlo", "0x0e hello"},
        // ECHO alone is for the server; with a word it runs a command aloud.
        {"/echo", "0x0e /echo"},
        {"/echo ", ""},
    };
    for (const auto& [line, packet] : cases)
        EXPECT_EQ(chatLines(line).join(u'\n'), QLatin1String(packet)) << line.toStdString();
    Bots(slot).Config.setClient(QStringLiteral("W2BN"));
    EXPECT_EQ(chatLines(QStringLiteral("/w bob hi")), QStringList{"0x0e /w bob hi"});
    Bots(slot).setOnline(false);
    EXPECT_TRUE(chatLines(QStringLiteral("hello")).isEmpty());
}

TEST_F(ChatInputTest, EchoRunsCommandsAloudAndRepliesNeedSomebodyToAnswer) {
    EXPECT_TRUE(chatLines(QStringLiteral("/echo x")).isEmpty());
    EXPECT_TRUE(rtbChat(slot).text().contains(
        QStringLiteral("This command is not available via the echo command")));
    EXPECT_TRUE(chatLines(QStringLiteral("/e ver")).isEmpty());
    ASSERT_EQ(Bots(slot).Queue.size(), 1);
    EXPECT_TRUE(Bots(slot).Queue[0].startsWith(QStringLiteral("Corvantide v")));

    // Replies need somebody to answer. (The line's way back to the send box is the window's
    // test.)
    Bots(slot).Queue.clear();
    EXPECT_TRUE(chatLines(QStringLiteral("/r are you there")).isEmpty());
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("No one has whispered you yet")));

    Bots(slot).LastWhisper = QStringLiteral("bob");
    Bots(slot).LastWhispered = QStringLiteral("ann");
    EXPECT_TRUE(chatLines(QStringLiteral("/reply hi")).isEmpty());
    chatLines(QStringLiteral("/forward yo"));
    EXPECT_EQ(Bots(slot).Queue, (QStringList{"/w bob hi", "/w ann yo"}));
}

// A plug-in that empties every outgoing line. (One that changes a line is
// the plug-ins' end-to-end test.)
class GaggingPlugin : public PluginObject {
public:
    QVariant call(const QString& member, QVariantList& args) override {
        if (member == QLatin1String("Event_PressedEnter")) args[1] = QStringLiteral("");
        return {};
    }
};

TEST_F(ChatInputTest, APlugInThatEmptiesALineStopsIt) {
    PluginHost::instance().add(
        {QStringLiteral("gag"), PluginHost::ChatEvents, std::make_shared<GaggingPlugin>()});
    EXPECT_TRUE(chatLines(QStringLiteral("hello")).isEmpty());
}
TEST_F(ChatInputTest, TypedLinesGoThroughTheCommandsFirst) {
    BotElement& bot = Bots(slot);
    EXPECT_EQ(SendUserLine(slot, QStringLiteral("/ver")), QStringLiteral("/ver"));
    EXPECT_TRUE(bot.Queue.isEmpty());
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("Corvantide v")));
    SendUserLine(slot, QStringLiteral("/join Elsewhere"));
    SendUserLine(slot, QStringLiteral("/ban"));
    EXPECT_EQ(bot.Queue, (QStringList{"/join Elsewhere", "/ban"}));

    // Talk goes out coded when asked (the send box's test checks the code)
    // and the screen shows it plain when it leaves.
    SettingsWrapper::instance().setEncryption(true);
    SendChatLine(slot, SendUserLine(slot, QStringLiteral("hi")));
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("hi")));
}

} // namespace
