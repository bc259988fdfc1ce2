// The page as a person uses it: a headless bot on the sandbox with the web
// page on, and a real browser that opens the page, offers a wrong token and
// then the right one, reads the channel and its users, and types a line that
// the channel hears.
#include "common/SandboxProcess.h"
#include "web/HeadlessChromium.h"

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString program() {
    return QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide");
}

int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

QString profileKey(const QString& name, const QString& account, const SandboxProcess& sandbox) {
    return QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\%1]\r\n"
                          "\"Account\"=\"%2\"\r\n\"Password\"=\"pass\"\r\n\"Product\"=\"STAR\"\r\n"
                          "\"Verbyte\"=\"d3\"\r\n\"Cdkey1\"=\"7178075237576\"\r\n"
                          "\"Channel\"=\"WebRoom\"\r\n\"Server\"=\"%3\"\r\n\"ServerBNLS\"=\"%4\"\r\n"
                          "\"Load at Startup\"=dword:00000001\r\n\r\n")
        .arg(name, account, sandbox.bncsServer(), sandbox.bnlsServer());
}

// Runs a verb on the home and gives what it printed.
QString verb(const QString& home, const QStringList& words) {
    QProcess process;
    process.start(program(), QStringList{QStringLiteral("--home"), home} + words);
    process.waitForFinished(20000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

} // namespace

TEST(WebPageEndToEnd, ABrowserReadsTheChannelAndTypesIntoItOnlyWithTheToken) {
    if (HeadlessChromium::binary().isEmpty())
        GTEST_SKIP() << "chromium is not installed (scripts/install-deps.sh --tests installs it)";
    SandboxProcess sandbox;
    ASSERT_TRUE(sandbox.start());
    QTemporaryDir home;
    const int port = freePort();
    const QString reg = home.filePath(QStringLiteral("bots.reg"));
    QFile file(reg);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write((QStringLiteral("REGEDIT4\r\n\r\n") +
                profileKey(QStringLiteral("Speaker"), QStringLiteral("webspeaker"), sandbox) +
                profileKey(QStringLiteral("Listener"), QStringLiteral("weblistener"), sandbox) +
                QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Settings]\r\n"
                               "\"WebPort\"=dword:%1\r\n\r\n")
                    .arg(port, 8, 16, QLatin1Char('0')))
                   .toLatin1());
    file.close();
    verb(home.path(), {QStringLiteral("import"), reg});
    const QString token = verb(home.path(), {QStringLiteral("web-token")});
    ASSERT_GE(token.size(), 40) << token.toStdString();

    QProcess bot;
    bot.start(program(), {QStringLiteral("--headless"), QStringLiteral("--no-input"),
                          QStringLiteral("--home"), home.path(), QStringLiteral("--connect")});
    QString out;
    const auto seen = [&](const QString& text) {
        return waitFor([&] {
            out += QString::fromUtf8(bot.readAllStandardOutput());
            return out.contains(text);
        });
    };
    ASSERT_TRUE(seen(QStringLiteral("The web page is at http://127.0.0.1:%1/").arg(port)))
        << out.toStdString();

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
    EXPECT_TRUE(seen(QStringLiteral("[Listener] ")));

    const QByteArray picture = qgetenv("CORVANTIDE_WEB_SCREENSHOT");
    if (!picture.isEmpty()) browser.screenshot(QString::fromLocal8Bit(picture), 1100, 620);

    bot.terminate();
    ASSERT_TRUE(bot.waitForFinished(20000));
}
