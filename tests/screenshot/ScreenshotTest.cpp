#include "chat/BotElement.h"
#include "common/SandboxProcess.h"
#include "config/SettingsWrapper.h"
#include "gui/UserListView.h"
#include "gui/frmBot.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "session/SlotTable.h"
#include "session/StartupSequence.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTest>
#include <QTextBlock>
#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace {

// The screen's pixels under a widget.
QImage regionOf(const QImage& screen, const QWidget* widget) {
    return screen.copy(QRect(widget->mapToGlobal(QPoint(0, 0)), widget->size()));
}

bool differs(QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
               std::abs(qBlue(a) - qBlue(b)) >
           90;
}

// Lines of text: bands of rows that hold pixels unlike the background.
int textLines(const QImage& image, QRgb background) {
    int lines = 0;
    bool inLine = false;
    for (int y = 0; y < image.height(); ++y) {
        int marked = 0;
        for (int x = 0; x < image.width(); ++x)
            marked += differs(image.pixel(x, y), background) ? 1 : 0;
        const bool text = marked >= 3;
        lines += (text && !inLine) ? 1 : 0;
        inLine = text;
    }
    return lines;
}

// Distinct colours of the text: saturated pixels by hue in steps of 30
// degrees, and one more bucket for white and grey, each counted when it
// holds enough pixels to be a piece of text rather than an edge.
int textColours(const QImage& image, QRgb background) {
    std::map<int, int> buckets;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (!differs(pixel, background)) continue;
            const QColor c(pixel);
            const int bucket = c.hsvSaturation() < 60 ? -1 : c.hsvHue() / 30;
            ++buckets[bucket];
        }
    }
    int colours = 0;
    for (const auto& [bucket, count] : buckets)
        colours += count >= 40 ? 1 : 0;
    return colours;
}

// The colours of the text that the chat view has on screen now.
std::set<QRgb> shownColours(const QPlainTextEdit* chat) {
    const int first = chat->cursorForPosition(QPoint(0, 0)).position();
    const QRect area = chat->viewport()->rect();
    const int last = chat->cursorForPosition(area.bottomRight()).position();
    std::set<QRgb> colours;
    for (QTextBlock block = chat->document()->findBlock(first);
         block.isValid() && block.position() <= last; block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            if (!it.fragment().text().trimmed().isEmpty())
                colours.insert(it.fragment().charFormat().foreground().color().rgb());
        }
    }
    return colours;
}

// Pixels of about that colour; the cores of glyphs reach it.
int pixelsOf(const QImage& image, QRgb colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += differs(image.pixel(x, y), colour) ? 0 : 1;
    }
    return count;
}

TEST(ScreenshotTest, TheWindowShowsTheChannelsUsersAndColouredChat) {
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        GTEST_SKIP() << "Xvfb is not installed: the screenshot needs an X server of its own";
    SandboxProcess sandbox;
    if (!sandbox.start({QStringLiteral("--residents"), QStringLiteral("40"),
                        QStringLiteral("--resident-rate"), QStringLiteral("6"),
                        QStringLiteral("--resident-channel"), QStringLiteral("Sandbox"),
                        QStringLiteral("--seed"), QStringLiteral("7")})) {
        GTEST_SKIP() << "the local server " << SandboxProcess::binary().toStdString()
                     << " did not start";
    }

    // As the program starts: the window first, then the start-up with its
    // timers, then the demo profile.
    SlotTable::reset();
    frmBot window;
    window.confirmClose = false;
    ASSERT_TRUE(StartupSequence().run());
    SettingsWrapper::instance().setTimeStamp(true);
    const int slot = SlotTable::instance().LoadProfile(QStringLiteral("Demo"));
    ConfigWrapper& c = Bots(slot).Config;
    c.setAccount(QStringLiteral("demobot"));
    c.setPassword(QStringLiteral("demo"));
    c.setClient(QStringLiteral("STAR"));
    c.setVerbyte(QStringLiteral("d3"));
    c.setCdkey(QStringLiteral("7178075237576"));
    c.setServer(sandbox.bncsServer());
    c.setServerBNLS(sandbox.bnlsServer());
    c.setChannel(QStringLiteral("Sandbox"));

    window.resize(1100, 680);
    window.move(0, 0);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    SlotTable::instance().SelectBot(slot);
    SlotTable::instance().ConnectBot(slot);

    ASSERT_TRUE(waitFor([&] { return Bots(slot).Online(); }, 20000))
        << rtbChat(slot).text().toStdString();
    ASSERT_TRUE(waitFor([&] { return lvUsers(slot).count() >= 20; }, 20000))
        << "users in the list: " << lvUsers(slot).count() << "\n"
        << rtbChat(slot).text().toStdString();
    // Let the residents talk a little and the window catch up.
    const int before = rtbChat(slot).length();
    waitFor([&] { return rtbChat(slot).length() > before + 600; }, 10000);
    QTest::qWait(1500);

    const QImage screen = window.screen()->grabWindow(0).toImage();
    const QImage shot = screen.copy(window.frameGeometry());
    const QString folder = QStringLiteral(CORVANTIDE_BINARY_DIR "/screenshot");
    QDir().mkpath(folder);
    EXPECT_TRUE(shot.save(folder + QStringLiteral("/window.png")));

    const QPlainTextEdit* chat =
        window.findChild<QPlainTextEdit*>(QStringLiteral("rtbChat%1").arg(slot));
    ASSERT_NE(chat, nullptr);
    const QImage chatPixels = regionOf(screen, chat->viewport());
    const QRgb chatBackground = chat->palette().base().color().rgb();
    EXPECT_GE(textLines(chatPixels, chatBackground), 10);
    // Every colour of the lines in view shows on the screen.
    const std::set<QRgb> colours = shownColours(chat);
    EXPECT_GE(colours.size(), 3u) << "the theme colours names, messages and times apart";
    for (const QRgb colour : colours)
        EXPECT_GE(pixelsOf(chatPixels, colour), 10)
            << "colour " << QColor(colour).name().toStdString();

    const QWidget* list = window.userList()->viewport();
    const QImage listPixels = regionOf(screen, list);
    const QRgb listBackground = list->palette().base().color().rgb();
    const int rows =
        std::min(lvUsers(slot).count(), list->height() / window.userList()->sizeHintForRow(0));
    EXPECT_GE(textLines(listPixels, listBackground), rows - 1);
    // The icon column holds the products' colours.
    EXPECT_GE(textColours(listPixels.copy(0, 0, 22, listPixels.height()), listBackground), 2);
}

} // namespace
