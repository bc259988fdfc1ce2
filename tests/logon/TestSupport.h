#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace logon::test {

inline const QString kVectors = QStringLiteral(CORVANTIDE_SHARED_DIR "/vectors/");

// One row of a reference file, by column name; a column the file lacks throws.
struct Row : std::map<std::string, std::string> {
    const std::string& operator[](const std::string& column) const { return at(column); }
    std::uint32_t number(const std::string& column) const {
        return std::uint32_t(std::stoul(at(column)));
    }
};

// A tab-separated reference file: a header line, then one case per line.
inline std::vector<Row> readVectors(const QString& name) {
    QFile file(kVectors + name);
    const QList<QByteArray> lines = file.open(QIODevice::ReadOnly) ? file.readAll().split('\n')
                                                                   : QList<QByteArray>{};
    const QList<QByteArray> header = lines.value(0).split('\t');
    std::vector<Row> rows;
    for (const QByteArray& line : lines.mid(1)) {
        if (line.isEmpty()) continue;
        const QList<QByteArray> cells = line.split('\t');
        Row& row = rows.emplace_back();
        for (qsizetype i = 0; i < header.size(); ++i)
            row.emplace(header[i].toStdString(), cells.value(i).toStdString());
    }
    return rows;
}

inline std::vector<std::uint8_t> unhex(const std::string& hex) {
    const QByteArray bytes = QByteArray::fromHex(QByteArray::fromStdString(hex));
    return {bytes.begin(), bytes.end()};
}

template <typename Bytes> std::string hex(const Bytes& bytes) {
    return QByteArray(reinterpret_cast<const char*>(std::data(bytes)), qsizetype(std::size(bytes)))
        .toHex()
        .toStdString();
}

} // namespace logon::test
