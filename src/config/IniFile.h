#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// A section-and-key file as the Windows profile functions see it: section and
// key names match without regard to case, blanks around keys and values are
// dropped, a value in double quotes loses them, and the first section and the
// first key of a name win. Lines it does not understand are kept as they are
// when the file is written back.
class IniFile {
public:
    // Bytes are Windows-1252, or UTF-8 after a byte order mark.
    static IniFile parse(QByteArrayView bytes);
    QByteArray toBytes() const;

    // Empty when the section or key is missing, or when the key has no '='.
    std::optional<QString> value(QStringView section, QStringView key) const;
    // The keys of the first section of that name, in file order.
    QStringList keys(QStringView section) const;
    // Replaces the first such key's value, or adds the key at the end of the
    // section, or adds the section at the end of the file.
    void setValue(const QString& section, const QString& key, const QString& value);

private:
    struct Entry {
        QString key;
        std::optional<QString> value;
        qsizetype line;
    };
    struct Section {
        QString name;
        qsizetype lastLine; // last non-blank line that belongs to the section
        QList<Entry> entries;
    };

    const Section* findSection(QStringView name) const;
    void index();

    QStringList lines_;
    QList<Section> sections_;
    QByteArray lineEnd_ = "\r\n";
    bool utf8_ = false;
};
