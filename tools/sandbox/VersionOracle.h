#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <optional>

namespace sandbox {

// The version check as the server sees it: the challenges it hands out (an archive and a
// formula) and the answers a genuine client gives to them over the game files. Both
// servers ask it: BNLS to answer, BNCS to check an answer.
class VersionOracle {
public:
    struct Challenge {
        QString archive; // "ver-IX86-N.mpq"
        int archiveNumber = 0;
        QString formula;
    };
    struct Answer {
        quint32 version = 0;
        quint32 checksum = 0;
        QByteArray info; // the executable information text
    };

    // The three game files; with none given it writes three of its own to a temporary
    // folder. `seed` picks the formulas (0: random).
    explicit VersionOracle(const QStringList& files = {}, quint32 seed = 0);
    ~VersionOracle();

    const QStringList& files() const { return m_files; }
    // False when a given file can't be read; the text says which.
    bool usable(QString& error) const;

    Challenge challenge();
    // Nothing for a formula or archive the check doesn't understand, or unreadable files.
    std::optional<Answer> answer(const QString& formula, int archiveNumber);

private:
    std::optional<Answer> compute(const QString& formula, int archiveNumber) const;

    std::unique_ptr<QTemporaryDir> m_ownFiles;
    QStringList m_files;
    QStringList m_formulas;
    QHash<QString, std::optional<Answer>> m_cache;
};

} // namespace sandbox
