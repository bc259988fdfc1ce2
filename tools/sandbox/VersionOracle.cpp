#include "sandbox/VersionOracle.h"

#include "logon/ExeInfo.h"
#include "logon/VersionCheck.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace sandbox {
namespace {

constexpr int kFormulaCount = 8;
constexpr int kArchiveCount = 8;
// The version a file without a version resource reports: 1.16.1.1.
constexpr quint32 kPlainFileVersion = 0x01100101;
constexpr int kCacheLimit = 4096;

QString makeFormula(QRandomGenerator& random) {
    static const char ops[] = {'+', '-', '^'};
    const auto op = [&] { return QChar::fromLatin1(ops[random.bounded(3)]); };
    return QStringLiteral("A=%1 B=%2 C=%3 4 A=A%4S B=B%5C C=C%6A A=A%7B")
        .arg(random.generate())
        .arg(random.generate())
        .arg(random.generate())
        .arg(op())
        .arg(op())
        .arg(op())
        .arg(op());
}

// Stand-in game files: fixed content, so every run hashes alike.
QStringList writeOwnFiles(const QString& folder) {
    const int sizes[] = {48 * 1024 + 3, 20000, 777};
    const char* names[] = {"Game.exe", "Storm.dll", "Client.dll"};
    QStringList paths;
    quint32 state = 0x2545F491;
    for (int i = 0; i < 3; ++i) {
        QByteArray bytes(sizes[i], Qt::Uninitialized);
        for (char& b : bytes) {
            state = state * 1664525u + 1013904223u;
            b = char(state >> 24);
        }
        const QString path = folder + QLatin1Char('/') + QLatin1String(names[i]);
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) file.write(bytes);
        paths.append(path);
    }
    return paths;
}

// "<file name> MM/DD/YY hh:mm:ss <size>", as the executable information reads.
QByteArray plainInfo(const QString& path) {
    const QFileInfo info(path);
    return (info.fileName() + QLatin1Char(' ') +
            info.lastModified().toUTC().toString(QStringLiteral("MM/dd/yy hh:mm:ss")) +
            QLatin1Char(' ') + QString::number(info.size()))
        .toLatin1();
}

} // namespace

VersionOracle::VersionOracle(const QStringList& files, quint32 seed) : m_files(files) {
    if (m_files.isEmpty()) {
        m_ownFiles = std::make_unique<QTemporaryDir>();
        m_files = writeOwnFiles(m_ownFiles->path());
    }
    QRandomGenerator random = seed ? QRandomGenerator(seed) : QRandomGenerator::securelySeeded();
    for (int i = 0; i < kFormulaCount; ++i)
        m_formulas.append(makeFormula(random));
}

VersionOracle::~VersionOracle() = default;

bool VersionOracle::usable(QString& error) const {
    for (const QString& f : m_files) {
        QFile file(f);
        if (!file.open(QIODevice::ReadOnly)) {
            error = QStringLiteral("can't read %1: %2").arg(f, file.errorString());
            return false;
        }
    }
    return true;
}

VersionOracle::Challenge VersionOracle::challenge() {
    auto* random = QRandomGenerator::global();
    Challenge c;
    c.archiveNumber = int(random->bounded(kArchiveCount));
    c.archive = QStringLiteral("ver-IX86-%1.mpq").arg(c.archiveNumber);
    c.formula = m_formulas[int(random->bounded(kFormulaCount))];
    return c;
}

std::optional<VersionOracle::Answer> VersionOracle::answer(const QString& formula,
                                                           int archiveNumber) {
    const QString key = QString::number(archiveNumber) + QLatin1Char('|') + formula;
    if (const auto it = m_cache.constFind(key); it != m_cache.cend()) return *it;
    // Clients may send formulas of their own; don't let them grow the cache without end.
    if (m_cache.size() >= kCacheLimit) m_cache.clear();
    return *m_cache.insert(key, compute(formula, archiveNumber));
}

std::optional<VersionOracle::Answer> VersionOracle::compute(const QString& formula,
                                                            int archiveNumber) const {
    const QByteArray f = formula.toLatin1();
    const std::array<std::string, 3> files{m_files[0].toStdString(), m_files[1].toStdString(),
                                           m_files[2].toStdString()};
    const auto checksum =
        logon::checkRevision({f.constData(), size_t(f.size())}, archiveNumber, files);
    if (!checksum) return std::nullopt;
    Answer a;
    a.checksum = *checksum;
    if (const auto exe = logon::ExeInfo::read(files[0])) {
        a.version = exe->version;
        a.info = QByteArray::fromStdString(exe->text);
    } else {
        a.version = kPlainFileVersion;
        a.info = plainInfo(m_files[0]);
    }
    return a;
}

} // namespace sandbox
