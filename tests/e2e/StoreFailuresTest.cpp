// The program as a user meets a disk that fills up and a settings store that
// cannot be used: no success is claimed for a write that was lost, and each
// refusal says what is wrong.
#include "config/RegistryWrapper.h"
#include "e2e/RunningProgram.h"

#include <QTemporaryDir>
#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

namespace {

QString storeFile(const QString& home) {
    return home + QStringLiteral("/.config/Ostrelund/Corvantide/settings.sqlite");
}

// A home on a disk that can be filled: a small tmpfs where the test may mount
// one (in a mount namespace of its own, so nobody else sees it), else the
// bot's limit on file size cut to one byte once it has started, which
// refuses writes as a full disk does.
class FillableHome {
public:
    explicit FillableHome(const QString& folder) : m_folder(folder) {
        QDir().mkpath(folder);
        m_mounted = ::unshare(CLONE_NEWNS) == 0 &&
                    ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0,
                            "size=4m,mode=0700") == 0;
    }
    ~FillableHome() {
        if (m_mounted) ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
    }
    bool mounted() const { return m_mounted; }
    // What the bot says about a write the disk refused.
    QString cause() const {
        return m_mounted ? QStringLiteral("the disk is full")
                         : QStringLiteral("the file has grown past the size");
    }
    void fill(qint64 pid) {
        if (!m_mounted) {
            const rlimit limit{1, RLIM_INFINITY};
            ASSERT_EQ(::prlimit(pid_t(pid), RLIMIT_FSIZE, &limit, nullptr), 0);
            return;
        }
        QFile filler(m_folder + QStringLiteral("/filler"));
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly));
        const QByteArray block(4096, 'x');
        while (filler.write(block) == block.size() && filler.flush()) {
        }
    }
    void empty() { QFile::remove(m_folder + QStringLiteral("/filler")); }

private:
    QString m_folder;
    bool m_mounted = false;
};

} // namespace

TEST(StoreFailures, AFullDiskGetsNoClaimOfAWriteItLost) {
    QTemporaryDir base;
    const QString home = base.filePath(QStringLiteral("home"));
    FillableHome disk(home);
    const VerbAnswer imported = importKeys(
        home,
        QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\Full]\r\n"
                       "\"Database\"=\"Main\"\r\n\"Load at Startup\"=dword:00000001\r\n\r\n"
                       "[HKEY_CURRENT_USER\\Software\\Corvantide4\\Databases\\Main]\r\n\r\n"));
    ASSERT_EQ(imported.status, 0) << imported.err.toStdString();
    EXPECT_EQ(imported.out, QStringLiteral("Imported 2 values from %1/import.reg\n").arg(home));

    RunningProgram bot;
    // A write past the size limit is refused, not a reason to end the bot.
    bot.setChildProcessModifier([] { std::signal(SIGXFSZ, SIG_IGN); });
    ASSERT_TRUE(bot.headless(home));
    ASSERT_TRUE(bot.says(QStringLiteral("Completed all startup tasks successfully.")))
        << bot.out.toStdString();
    disk.fill(bot.processId());
    constexpr int kUsers = 30;
    for (int i = 1; i <= kUsers; ++i)
        bot.write(QStringLiteral("/add full%1 50\n").arg(i).toUtf8());
    bot.write("/addquote q1 a quote the disk cannot keep\n");
    bot.stop();
    const QString& out = bot.out;
    disk.empty();

    EXPECT_TRUE(out.contains(QStringLiteral(": ") + disk.cause())) << out.toStdString();
    EXPECT_FALSE(out.contains(QStringLiteral("Added new quote"))) << out.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("Could not add quote q1: ") + disk.cause()));
    RegistryWrapper store(storeFile(home));
    ASSERT_TRUE(store.isOpen()) << store.openError().toStdString();
    int refused = 0;
    for (int i = 1; i <= kUsers; ++i) {
        const QString name = QStringLiteral("full%1").arg(i);
        const bool claimed = out.contains(QStringLiteral("Added %1 to the userbase.").arg(name));
        refused += out.contains(QStringLiteral("Could not add %1 to the userbase: ").arg(name));
        EXPECT_EQ(claimed,
                  store.KeyExists(QStringLiteral("HKCU\\Software\\Corvantide4\\Databases\\Main\\") +
                                  name))
            << name.toStdString() << (disk.mounted() ? " on a full tmpfs" : " past the size limit");
    }
    EXPECT_GT(refused, 0) << out.toStdString();
}

TEST(StoreFailures, AStoreThatCannotBeUsedIsToldApart) {
    QTemporaryDir home;
    const QString file = storeFile(home.path());
    QDir().mkpath(QFileInfo(file).path());
    QFile text(file);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("my notes, saved over the settings by mistake\n");
    text.close();

    // The first start of a bot without profiles.
    RunningProgram first;
    ASSERT_TRUE(first.headless(home.path()));
    ASSERT_TRUE(first.says(QStringLiteral("Completed all startup tasks successfully.")))
        << first.out.toStdString();
    const QString& out = first.out;
    EXPECT_TRUE(
        out.contains(QStringLiteral("goes on with fresh settings.\nWelcome to Corvantide v")))
        << out.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("- There are no bots set to be loaded!")));
    EXPECT_TRUE(out.contains(QStringLiteral("was not a settings store; it was moved aside to ") +
                             file + QStringLiteral(".damaged-")))
        << out.toStdString();
    const QStringList aside =
        QDir(QFileInfo(file).path()).entryList({QStringLiteral("settings.sqlite.damaged-*")});
    ASSERT_EQ(aside.size(), 1);
    QFile kept(QFileInfo(file).path() + u'/' + aside.first());
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "my notes, saved over the settings by mistake\n");

    // A second bot on the same home is told that the first one holds it.
    const VerbAnswer second = RunVerb(home.path(), {QStringLiteral("--headless")});
    EXPECT_EQ(second.status, 1);
    EXPECT_TRUE(second.err.contains(QStringLiteral("another Corvantide that runs with this home")));
    EXPECT_EQ(first.stop(), 0);
}
