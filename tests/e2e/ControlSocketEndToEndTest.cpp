// The socket over which terminal verbs reach a running bot, attacked as a
// second user of the machine and as a flood of idle connections would.
#include "control/ControlServer.h"
#include "e2e/RunningProgram.h"

#include <QLocalSocket>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// A bot and its verbs on one home, with the folders they look in for the
// socket set by the test in the environment they inherit.
class ControlSocket : public testing::Test, protected Terminal {
protected:
    void SetUp() override {
        for (const char* name : {"TMPDIR", "XDG_RUNTIME_DIR"})
            saved[name] = qgetenv(name);
        qputenv("TMPDIR", QFile::encodeName(tmp.path()));
        useRuntime({});
    }
    void TearDown() override {
        bot.stop();
        for (const auto& [name, value] : saved) {
            if (value.isNull())
                qunsetenv(name);
            else
                qputenv(name, value);
        }
    }

    static void useRuntime(const QString& folder) {
        if (folder.isEmpty())
            qunsetenv("XDG_RUNTIME_DIR");
        else
            qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
    }
    void startBot() {
        bot.out.clear();
        ASSERT_TRUE(bot.headless(home.path()));
        ASSERT_TRUE(bot.says(QStringLiteral("Completed all startup tasks")))
            << bot.out.toStdString();
    }
    // The one socket in `folder`.
    static QString socketIn(const QString& folder) {
        const QStringList names =
            QDir(folder).entryList({QStringLiteral("corvantide-*")}, QDir::System | QDir::Files);
        return names.size() == 1 ? folder + u'/' + names[0] : QString();
    }

    QTemporaryDir tmp;
    std::map<const char*, QByteArray> saved;
    RunningProgram bot;
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
    ASSERT_EQ(::lstat(QFile::encodeName(folder).constData(), &facts), 0) << bot.out.toStdString();
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
    const VerbAnswer busy = verb("profile list");
    EXPECT_EQ(busy.status, 1);
    EXPECT_TRUE(busy.err.contains(QStringLiteral("terminal connections")))
        << busy.err.toStdString();
    EXPECT_TRUE(bot.says(QStringLiteral("32 terminal connections are open at once")));

    EXPECT_TRUE(waitFor([&] { return open() == 0; }, ControlServer::kIdleMs + 3000)) << open();
    const VerbAnswer made = verb("profile new Main");
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
    EXPECT_TRUE(
        bot.says(QStringLiteral("the bot has no file descriptors left (Too many open files)")));
    const VerbAnswer late = verb("profile list");
    EXPECT_EQ(late.out.left(15), QStringLiteral("No profiles yet")) << late.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(path));
    bot.read();
    EXPECT_EQ(bot.out.count(QStringLiteral("no file descriptors left")), 1);
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
    EXPECT_TRUE(bot.says(QStringLiteral("cannot reach this bot: the folder")))
        << bot.out.toStdString();
    EXPECT_TRUE(bot.out.contains(QStringLiteral("belongs to the user nobody")))
        << bot.out.toStdString();
    const VerbAnswer refused = verb(secret);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("belongs to the user nobody")))
        << refused.err.toStdString();
    bot.stop();

    // In a private runtime folder: the bot's own socket name, first owned by
    // the other user, then made to look like the user's.
    QTemporaryDir runtimeDir;
    const QString runtime = runtimeDir.path();
    useRuntime(runtime);
    startBot();
    const QString path = socketIn(runtime);
    ASSERT_FALSE(path.isEmpty());
    bot.stop();
    QTemporaryDir shared;
    ASSERT_EQ(::chmod(QFile::encodeName(shared.path()).constData(), 01777), 0);
    const QString squat = shared.filePath(QStringLiteral("s"));
    const int behind = listenAs(other, squat);
    ASSERT_GE(behind, 0);
    ASSERT_TRUE(QFile::rename(squat, path));
    const VerbAnswer foreignFile = verb(secret);
    EXPECT_EQ(foreignFile.err, QStringLiteral("The control socket %1 belongs to the user nobody, "
                                              "not to you; nothing was sent to it.\n")
                                   .arg(path));
    ASSERT_EQ(::lchown(QFile::encodeName(path).constData(), 0, 0), 0);
    const VerbAnswer foreignPeer = verb(secret);
    EXPECT_EQ(foreignPeer.err, QStringLiteral("The program listening on %1 belongs to the user "
                                              "nobody, not to you; nothing was sent to it.\n")
                                   .arg(path));
    EXPECT_EQ(receivedBy(inFolder) + receivedBy(behind), QByteArray());
    ::close(inFolder);
    ::close(behind);

    // The other user reaches the bot's socket (the folder opened by hand).
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
    EXPECT_TRUE(bot.says(QStringLiteral("Refused a terminal connection from the user nobody")));
    ASSERT_EQ(::chmod(QFile::encodeName(runtime).constData(), 0700), 0);
    const VerbAnswer list = verb("profile list");
    EXPECT_EQ(list.out.left(15), QStringLiteral("No profiles yet")) << list.err.toStdString();
}
