#include "config/RegistryWrapper.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>
#include <sqlite3.h>
#include <unistd.h>

namespace {

const QString kCrashKey = QStringLiteral("HKCU\\Software\\Crash");
constexpr char kWriterFile[] = "CORVANTIDE_STORE_WRITER";
constexpr char kWriterFirst[] = "CORVANTIDE_STORE_WRITER_FIRST";

QString newKey(int n) {
    return kCrashKey + QStringLiteral("\\New%1").arg(n);
}

// Write n: a key made, given a string and a dword, and renamed. False when
// the store refused it.
bool write(RegistryWrapper& store, int n) {
    const QString key = newKey(n);
    return store.WriteSTRING(key, QStringLiteral("Text"), QStringLiteral("text %1").arg(n)) != 0 &&
           store.WriteDWORD(key, QStringLiteral("Number"), n) != 0 &&
           store.RenameKey(kCrashKey, QStringLiteral("New%1").arg(n), QStringLiteral("R%1").arg(n));
}

::testing::AssertionResult readsBack(RegistryWrapper& store, int n) {
    const QString renamed = kCrashKey + QStringLiteral("\\R%1").arg(n);
    if (store.ReadSTRING(renamed, QStringLiteral("Text")) == QStringLiteral("text %1").arg(n) &&
        store.ReadDWORD(renamed, QStringLiteral("Number"), -1) == n && !store.KeyExists(newKey(n)))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "write " << n << " was reported done but is lost";
}

bool integrityOk(const QString& file) {
    sqlite3* db = nullptr;
    bool ok = false;
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) ==
        SQLITE_OK) {
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &stmt, nullptr) == SQLITE_OK &&
            sqlite3_step(stmt) == SQLITE_ROW)
            ok = QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0))) == "ok";
        sqlite3_finalize(stmt);
    }
    sqlite3_close(db);
    return ok;
}

// The writer: writes for ever from write number `first` on, and prints each
// number once its write has returned.
int runStoreWriter(const QString& file, int first) {
    RegistryWrapper store(file);
    if (!store.isOpen()) return 2;
    for (int n = first;; ++n) {
        if (!write(store, n)) {
            fprintf(stderr, "write %d failed\n", n);
            return 4;
        }
        const QByteArray line = QByteArray::number(n) + '\n';
        if (::write(STDOUT_FILENO, line.constData(), line.size()) != line.size()) return 3;
    }
}

// The crash test starts this program again with the writer's store in the
// environment; that run is the writer, before any test or Qt object exists.
const int kWriterRun = [] {
    const QByteArray file = qgetenv(kWriterFile);
    if (!file.isEmpty())
        ::_exit(runStoreWriter(QString::fromLocal8Bit(file),
                               qEnvironmentVariableIntValue(kWriterFirst)));
    return 0;
}();

} // namespace

// A writer killed with SIGKILL at random moments never costs a write it had
// reported, and never leaves a store that fails to open.
TEST(StoreCrash, ReportedWritesSurviveKill) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("settings.sqlite"));
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> delayMs(30, 300);

    QList<int> reported;
    int first = 0;
    for (int round = 0; round < 12; ++round) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(kWriterFile), file);
        environment.insert(QString::fromLatin1(kWriterFirst), QString::number(first));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {});
        ASSERT_TRUE(child.waitForStarted());
        QElapsedTimer clock;
        clock.start();
        const int delay = delayMs(random);
        QByteArray output;
        while (clock.elapsed() < delay) {
            child.waitForReadyRead(5);
            output += child.readAllStandardOutput();
        }
        child.kill();
        child.waitForFinished();
        output += child.readAllStandardOutput();

        // Only whole lines are writes the child lived to report.
        output.truncate(output.lastIndexOf('\n') + 1);
        for (const QByteArray& line : output.split('\n')) {
            if (!line.isEmpty()) reported.append(line.toInt());
        }
        // Each child gets numbers of its own, also after a round that
        // reported nothing.
        first = std::max(first, reported.isEmpty() ? 0 : reported.last()) + 1000;

        ASSERT_NE(child.exitCode(), 4) << child.readAllStandardError().constData();
        if (!QFileInfo::exists(file)) {
            // Killed before the store was made: then nothing can have been reported.
            ASSERT_TRUE(reported.isEmpty()) << "round " << round;
            continue;
        }
        ASSERT_TRUE(integrityOk(file)) << "round " << round;
        RegistryWrapper store(file);
        ASSERT_TRUE(store.isOpen()) << "round " << round;
        for (int n : reported)
            ASSERT_TRUE(readsBack(store, n));
    }
    EXPECT_GT(reported.size(), 12) << "the writer hardly ran; the test proved little";
}
