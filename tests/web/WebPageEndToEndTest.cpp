// The page as a person uses it: a headless bot on the sandbox with the web
// page on, and a real browser that opens the page, offers a wrong token and
// then the right one, reads the channel and its users, and types a line that
// the channel hears.
#include "e2e/RunningProgram.h"
#include "web/HeadlessChromium.h"

#include <QTemporaryDir>

TEST(WebPageEndToEnd, ABrowserReadsTheChannelAndTypesIntoItOnlyWithTheToken) {
    if (HeadlessChromium::binary().isEmpty())
        GTEST_SKIP() << "chromium is not installed (scripts/install-deps.sh --tests installs it)";
    SandboxProcess sandbox;
    ASSERT_TRUE(sandbox.start());
    QTemporaryDir home;
    const int port = freePort();
    const QString channel = QStringLiteral("WebRoom");
    ASSERT_EQ(importKeys(home.path(),
                         profileKey(QStringLiteral("Speaker"), QStringLiteral("webspeaker"), channel,
                                    sandbox) +
                             profileKey(QStringLiteral("Listener"), QStringLiteral("weblistener"),
                                        channel, sandbox) +
                             QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Settings]\r\n"
                                            "\"WebPort\"=dword:%1\r\n\r\n")
                                 .arg(port, 8, 16, QLatin1Char('0')))
                  .status,
              0);
    const QString token = RunVerb(home.path(), {QStringLiteral("web-token")}).out.trimmed();
    ASSERT_GE(token.size(), 40) << token.toStdString();

    RunningProgram bot;
    ASSERT_TRUE(bot.headless(home.path(), {QStringLiteral("--no-input"), QStringLiteral("--connect")}));
    ASSERT_TRUE(bot.says(QStringLiteral("The web page is at http://127.0.0.1:%1/").arg(port)))
        << bot.out.toStdString();

    HeadlessChromium browser;
    QString error;
    ASSERT_TRUE(browser.start(&error)) << error.toStdString();
    const QString page = QStringLiteral("http://127.0.0.1:%1/").arg(port);
    ASSERT_TRUE(browser.navigate(page));
    const auto logIn = [&](const QString& offered) {
        browser.evaluate(QStringLiteral("$('token').value = '%1'; $('login').requestSubmit(); true")
                             .arg(offered));
    };

    logIn(QStringLiteral("not-the-token"));
    EXPECT_TRUE(browser.waitUntil(QStringLiteral("$('login-error').textContent.includes('token is wrong')")));
    EXPECT_TRUE(browser.evaluate(QStringLiteral("$('bot').hidden")).toBool());
    EXPECT_TRUE(browser.evaluate(QStringLiteral("state.slots.length === 0")).toBool());

    logIn(token);
    ASSERT_TRUE(browser.waitUntil(QStringLiteral(
        "!$('bot').hidden && state.slots.length === 2 && state.slots.every(s => s.online)")))
        << browser.evaluate(QStringLiteral("JSON.stringify(state.slots)")).toString().toStdString();
    const auto showTab = [&](const char* profile) {
        browser.evaluate(
            QStringLiteral("document.querySelector('#tabs [data-profile=\"%1\"]').click(); true")
                .arg(QLatin1String(profile)));
    };

    // The listener's tab: the channel's lines in the theme's colours, with
    // their time stamps, and both bots in the user list.
    showTab("Listener");
    EXPECT_TRUE(browser.waitUntil(QStringLiteral(
        "$('users').textContent.includes('webspeaker') && "
        "$('users').textContent.includes('weblistener') && "
        "$('list-heading').textContent.includes('WebRoom (2)')")))
        << browser.evaluate(QStringLiteral("$('side').textContent")).toString().toStdString();
    EXPECT_TRUE(browser.waitUntil(QStringLiteral("$('chat').textContent.includes('WebRoom')")));
    EXPECT_TRUE(browser.evaluate(QStringLiteral(
        "/\\[\\d\\d?:\\d\\d:\\d\\d/.test($('chat').textContent) && "
        "[...$('chat').querySelectorAll('span')].every(s => s.style.color !== '')")).toBool())
        << browser.evaluate(QStringLiteral("$('chat').innerHTML.slice(0, 400)")).toString().toStdString();

    // Typed into the speaker's tab, heard in the listener's through the server.
    showTab("Speaker");
    browser.evaluate(QStringLiteral(
        "$('line').value = 'hello from the page'; $('send').requestSubmit(); true"));
    showTab("Listener");
    EXPECT_TRUE(browser.waitUntil(QStringLiteral(
        "$('chat').textContent.includes('<webspeaker> hello from the page')")))
        << browser.evaluate(QStringLiteral("$('chat').textContent")).toString().toStdString();
    EXPECT_TRUE(bot.says(QStringLiteral("[Listener] ")));
    EXPECT_EQ(bot.stop(), 0);
}
