#include "desktop/WebSite.h"

#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "desktop/LocalSite.h"
#include "platform/ChatDocument.h"
#include "session/MachineFacts.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

const QString kVersionPath = QStringLiteral("/corvantide.version.txt");
const QString kUsersPath = QStringLiteral("/corvantide.users.php");

class WebSiteTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        ReadMachineFacts(); // the running build is 0.1.0
        SettingsWrapper::instance().setWebHost(site.host());
    }
    void TearDown() override { SettingsWrapper::instance().setWebHost({}); }

    // Reads the version file once, none when null; true when a newer build
    // was announced.
    bool checkWith(const QByteArray& file) {
        if (file.isNull())
            site.files.remove(kVersionPath);
        else
            site.files[kVersionPath] = file;
        rtbChat(0).clear();
        QSignalSpy done(&web, &WebSite::updateCheckDone);
        web.CheckForUpdates();
        EXPECT_TRUE(done.wait(5000));
        return !done.isEmpty() && done.first().first().toBool();
    }
    QString console() { return rtbChat(0).text(); }

    LocalSite site;
    WebSite web;
};

} // namespace

TEST_F(WebSiteTest, ANewerBuildIsAnnouncedWithTheSiteAndItsChanges) {
    EXPECT_TRUE(checkWith("\xA4"
                          "Corvantide\nchanges=Before the version\nVERSION=0.1.7\n"
                          "changes=Faster chat=and more\nnot a key\nChanges=Tray tips\n"
                          "file=http://elsewhere/setup.exe\n"));
    const QString text = console();
    EXPECT_EQ(text.count(QStringLiteral("Corvantide v0.1.7 is available!")), 2);
    EXPECT_EQ(text.count(QStringLiteral("Please goto ") + site.host() +
                         QStringLiteral(" to download the new version!")),
              2);
    EXPECT_TRUE(text.contains(QStringLiteral("Your version of Corvantide is outdated!")));
    const qsizetype changes = text.indexOf(QStringLiteral("Changes made in this version:"));
    EXPECT_GT(text.indexOf(QStringLiteral("Faster chat")), changes);
    EXPECT_GT(text.indexOf(QStringLiteral("Tray tips")),
              text.indexOf(QStringLiteral("Faster chat")));
    EXPECT_FALSE(text.contains(QStringLiteral("and more")));
    EXPECT_FALSE(text.contains(QStringLiteral("Before the version")));
    EXPECT_FALSE(text.contains(QStringLiteral("setup.exe"))) << "nothing is downloaded";
    EXPECT_EQ(site.connections, 1);
}

// Only the third number counts; a file needs its mark, and a 404 page is no
// version file.
TEST_F(WebSiteTest, NoNewerBuildOrABadFileSaysNothing) {
    for (const QByteArray& file :
         {QByteArray("\xA4\nversion=0.1.0\nchanges=the same build\n"),
          QByteArray("\xA4\nversion=9.9.0\n"), QByteArray("\xA4\nversion=0.2\n"),
          QByteArray("version=0.1.9\n"), QByteArray()}) {
        EXPECT_FALSE(checkWith(file)) << file.constData();
        EXPECT_EQ(console(), QString());
    }
}

TEST_F(WebSiteTest, TheUserCountBecomesTheLabel) {
    const auto countWith = [this](const QByteArray& file) {
        site.files[kUsersPath] = file;
        QSignalSpy changed(&web, &WebSite::usersOnlineChanged);
        web.RefreshUsersOnline();
        EXPECT_TRUE(changed.wait(5000)) << file.constData();
        return web.UsersOnline();
    };
    EXPECT_EQ(countWith("Users online: 42"), QStringLiteral("42 people using Corvantide now"));
    EXPECT_EQ(countWith("Visitors: 3"), QString());
    EXPECT_EQ(countWith("Users online: 1"), QStringLiteral("1 person using Corvantide now"));
    EXPECT_EQ(countWith("Users online: 0"), QString());
}

TEST_F(WebSiteTest, ASiteThatNeverAnswersHoldsNothingUp) {
    site.silent = true;
    site.files[kVersionPath] = "\xA4\nversion=0.1.9\n";
    web.setTimeout(400);
    int ticks = 0;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&ticks] { ++ticks; });
    beat.start(20);
    QSignalSpy done(&web, &WebSite::updateCheckDone);
    web.CheckForUpdates();
    web.RefreshUsersOnline();
    web.RefreshUsersOnline(); // while the first read still waits: not asked twice
    ASSERT_TRUE(done.wait(5000));
    EXPECT_FALSE(done.first().first().toBool());
    EXPECT_GE(ticks, 10) << "the event loop went on while the site was silent";
    EXPECT_EQ(site.connections, 2);
    EXPECT_EQ(web.UsersOnline(), QString());
}

TEST_F(WebSiteTest, WithoutAWebHostNothingIsRead) {
    SettingsWrapper::instance().setWebHost({});
    QSignalSpy done(&web, &WebSite::updateCheckDone);
    web.CheckForUpdates();
    web.RefreshUsersOnline();
    EXPECT_FALSE(done.wait(300));
    EXPECT_EQ(site.connections, 0);
    EXPECT_FALSE(WebSite::Address(QStringLiteral("/")).isValid());
}
