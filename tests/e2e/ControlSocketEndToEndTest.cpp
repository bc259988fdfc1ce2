// The socket over which terminal verbs reach a running bot, attacked as a
// second user of the machine and as a flood of idle connections would.
#include "common/SandboxProcess.h"
#include "control/ControlServer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

struct Answer {
    int status = -1;
    QString err;
    QString out;
};

// A bot and its verbs on one home, with the folders they look in for the
// socket set by the test.
class ControlSocket : public testing::Test {
protected:
    void TearDown() override { stopBot(); }

    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("TMPDIR"), tmp.path());
        if (runtime.isEmpty())
            env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        else
            env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
        return env;
    }
    void startBot() {
        bot.setProcessEnvironment(environment());
        bot.start(QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide"),
                  {QStringLiteral("--headless"), QStringLiteral("--home"), home.path()});
        ASSERT_TRUE(bot.waitForStarted());
        ASSERT_TRUE(botSaid("Completed all startup tasks")) << said.toStdString();
    }
    void stopBot() {
        if (bot.state() == QProcess::NotRunning) return;
        bot.closeWriteChannel();
        if (!bot.waitForFinished(10000)) bot.kill();
    }
    bool botSaid(const char* text, int ms = 10000) {
        return waitFor(
            [&] {
                said += QString::fromUtf8(bot.readAllStandardOutput());
                return said.contains(QString::fromUtf8(text));
            },
            ms);
    }
    Answer verb(const QStringList& words) {
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide"),
                      QStringList{QStringLiteral("--home"), home.path()} + words);
        Answer run;
        if (!waitFor([&] { return process.state() == QProcess::NotRunning; }, 20000)) return run;
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardError()),
                QString::fromUtf8(process.readAllStandardOutput())};
    }
    // The one socket in `folder`.
    static QString socketIn(const QString& folder) {
        const QStringList names =
            QDir(folder).entryList({QStringLiteral("corvantide-*")}, QDir::System | QDir::Files);
        return names.size() == 1 ? folder + u'/' + names[0] : QString();
    }

    QTemporaryDir home;
    QTemporaryDir tmp;
    QString runtime;
    QProcess bot;
    QString said;
};

// A listening socket at `path` made as another user would make it. The
// descriptor stays with the test, which plays that user.
int listenAs(uid_t uid, const QString& path) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray file = QFile::encodeName(path);
    std::memcpy(address.sun_path, file.constData(), size_t(file.size()));
    if (::seteuid(uid) != 0) return -1;
    const bool ok =
        ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::listen(descriptor, 8) == 0;
    if (::seteuid(0) != 0 || !ok) return -1;
    return descriptor;
}

// What reached the squatter: the bytes of the connections it was offered.
QByteArray receivedBy(int listening) {
    QByteArray bytes;
    for (int peer; (peer = ::accept(listening, nullptr, nullptr)) >= 0; ::close(peer)) {
        char buffer[4096];
        for (ssize_t n; (n = ::recv(peer, buffer, sizeof buffer, MSG_DONTWAIT)) > 0;)
            bytes.append(buffer, n);
    }
    return bytes;
}

uid_t nobody() {
    const passwd* entry = getpwnam("nobody");
    return entry ? entry->pw_uid : 65534;
}

} // namespace

// The verbs' socket is in a 0700 folder of the user's own in the shared
// temporary folder; 40 idle connections take 32 places, the rest are turned
// away, all are dropped after the idle time and a verb then goes through.
TEST_F(ControlSocket, LivesInAPrivateFolderAndOutlastsIdleConnections) {
    startBot();
    const QString folder = tmp.filePath(QStringLiteral("corvantide-%1").arg(geteuid()));
    struct stat facts {};
    ASSERT_EQ(::lstat(QFile::encodeName(folder).constData(), &facts), 0) << said.toStdString();
    EXPECT_TRUE(S_ISDIR(facts.st_mode));
    EXPECT_EQ(facts.st_uid, geteuid());
    EXPECT_EQ(facts.st_mode & 07777, 0700u);
    const QString path = socketIn(folder);
    ASSERT_FALSE(path.isEmpty());

    std::vector<std::unique_ptr<QLocalSocket>> idle;
    for (int i = 0; i < 40; ++i) {
        idle.push_back(std::make_unique<QLocalSocket>());
        idle.back()->connectToServer(path);
        ASSERT_TRUE(idle.back()->waitForConnected(2000)) << i;
    }
    idle[0]->write("{\"args\":[\"profile\",\"new\","); // half a request
    idle[0]->flush();
    const auto open = [&] {
        return std::count_if(idle.begin(), idle.end(), [](const auto& socket) {
            return socket->state() == QLocalSocket::ConnectedState;
        });
    };
    ASSERT_TRUE(waitFor([&] { return open() == ControlServer::kMostConnections; }, 3000)) << open();
    EXPECT_TRUE(idle.back()->readAll().contains("32 terminal connections open"));
    const Answer busy = verb({QStringLiteral("profile"), QStringLiteral("list")});
    EXPECT_EQ(busy.status, 1);
    EXPECT_TRUE(busy.err.contains(QStringLiteral("terminal connections")))
        << busy.err.toStdString();
    EXPECT_TRUE(botSaid("32 terminal connections are open at once"));

    EXPECT_TRUE(waitFor([&] { return open() == 0; }, ControlServer::kIdleMs + 3000)) << open();
    const Answer made =
        verb({QStringLiteral("profile"), QStringLiteral("new"), QStringLiteral("Main")});
    EXPECT_EQ(made.status, 0) << made.err.toStdString();
    EXPECT_EQ(made.out.left(22), QStringLiteral("Created profile 'Main'"));
}

// With too few file descriptors for every connection, the bot says so once,
// keeps its socket and answers the verb that waited once the idle ones go.
TEST_F(ControlSocket, RunningOutOfDescriptorsIsALineAndARetry) {
    bot.setChildProcessModifier([] {
        const rlimit few{24, 24};
        ::setrlimit(RLIMIT_NOFILE, &few);
    });
    startBot();
    const QString path = socketIn(tmp.filePath(QStringLiteral("corvantide-%1").arg(geteuid())));
    ASSERT_FALSE(path.isEmpty());
    std::vector<std::unique_ptr<QLocalSocket>> idle;
    for (int i = 0; i < 24; ++i) {
        idle.push_back(std::make_unique<QLocalSocket>());
        idle.back()->connectToServer(path);
        ASSERT_TRUE(idle.back()->waitForConnected(2000)) << i;
    }
    EXPECT_TRUE(botSaid("the bot has no file descriptors left (Too many open files)"));
    const Answer late = verb({QStringLiteral("profile"), QStringLiteral("list")});
    EXPECT_EQ(late.out.left(15), QStringLiteral("No profiles yet")) << late.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(path));
    said += QString::fromUtf8(bot.readAllStandardOutput());
    EXPECT_EQ(said.count(QStringLiteral("no file descriptors left")), 1);
}

// A second user who takes the socket's place first gets no byte of a
// request: not by owning the folder, not by a socket in the user's own
// folder, not by listening behind a socket that looks like the user's. And
// the bot does not hear another user who reaches its socket.
TEST_F(ControlSocket, AnotherUserTakingThePlaceFirstGetsNoByte) {
    if (geteuid() != 0) GTEST_SKIP() << "playing a second user needs root";
    const uid_t other = nobody();
    const QStringList secret{QStringLiteral("profile"), QStringLiteral("set"),
                             QStringLiteral("Demo"), QStringLiteral("Password"),
                             QStringLiteral("hunter2")};

    // The folder in the shared temporary folder, made first by the other user.
    ASSERT_EQ(::chmod(QFile::encodeName(tmp.path()).constData(), 01777), 0);
    const QString folder = tmp.filePath(QStringLiteral("corvantide-%1").arg(geteuid()));
    ASSERT_TRUE(QDir().mkdir(folder));
    ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0700), 0);
    ASSERT_EQ(::chown(QFile::encodeName(folder).constData(), other, other), 0);
    const int inFolder = listenAs(other, folder + QStringLiteral("/corvantide-squat"));
    ASSERT_GE(inFolder, 0);
    startBot();
    EXPECT_TRUE(botSaid("cannot reach this bot: the folder")) << said.toStdString();
    EXPECT_TRUE(said.contains(QStringLiteral("belongs to the user nobody"))) << said.toStdString();
    const Answer refused = verb(secret);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("belongs to the user nobody")))
        << refused.err.toStdString();
    stopBot();

    // In a private runtime folder: the bot's own socket name, first owned by
    // the other user, then made to look like the user's.
    QTemporaryDir runtimeDir;
    runtime = runtimeDir.path();
    said.clear();
    startBot();
    const QString path = socketIn(runtime);
    ASSERT_FALSE(path.isEmpty());
    stopBot();
    QTemporaryDir shared;
    ASSERT_EQ(::chmod(QFile::encodeName(shared.path()).constData(), 01777), 0);
    const QString squat = shared.filePath(QStringLiteral("s"));
    const int behind = listenAs(other, squat);
    ASSERT_GE(behind, 0);
    ASSERT_TRUE(QFile::rename(squat, path));
    const Answer foreignFile = verb(secret);
    EXPECT_EQ(foreignFile.err, QStringLiteral("The control socket %1 belongs to the user nobody, "
                                              "not to you; nothing was sent to it.\n")
                                   .arg(path));
    ASSERT_EQ(::lchown(QFile::encodeName(path).constData(), 0, 0), 0);
    const Answer foreignPeer = verb(secret);
    EXPECT_EQ(foreignPeer.err, QStringLiteral("The program listening on %1 belongs to the user "
                                              "nobody, not to you; nothing was sent to it.\n")
                                   .arg(path));
    EXPECT_EQ(receivedBy(inFolder) + receivedBy(behind), QByteArray());
    ::close(inFolder);
    ::close(behind);

    // The other user reaches the bot's socket (the folder opened by hand).
    said.clear();
    startBot();
    ASSERT_EQ(::chmod(QFile::encodeName(runtime).constData(), 0711), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0666), 0);
    ASSERT_EQ(::seteuid(other), 0);
    QLocalSocket intruder;
    intruder.connectToServer(path);
    ASSERT_EQ(::seteuid(0), 0);
    ASSERT_TRUE(intruder.waitForConnected(2000));
    intruder.write("{\"args\":[\"profile\",\"new\",\"Intruder\"]}\n");
    EXPECT_TRUE(waitFor([&] { return intruder.state() != QLocalSocket::ConnectedState; }));
    EXPECT_TRUE(intruder.readAll().isEmpty());
    EXPECT_TRUE(botSaid("Refused a terminal connection from the user nobody"));
    ASSERT_EQ(::chmod(QFile::encodeName(runtime).constData(), 0700), 0);
    const Answer list = verb({QStringLiteral("profile"), QStringLiteral("list")});
    EXPECT_EQ(list.out.left(15), QStringLiteral("No profiles yet")) << list.err.toStdString();
}
