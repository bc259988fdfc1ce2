#include "platform/RecentTexts.h"

#include "platform/Cp1252.h"

#include <QHashFunctions>
#include <QLatin1StringView>

#include <array>

namespace {

// Names and statstrings are short; a longer text is seldom heard twice.
constexpr qsizetype kLongestShared = 96;
constexpr size_t kEntries = 4096;

struct Entry {
    size_t hash = 0;
    QString text;
};

std::array<Entry, kEntries>& entries() {
    static std::array<Entry, kEntries> table;
    return table;
}

// A text equal to the bytes read as Latin-1 is also their Windows-1252
// decoding: a byte the two code pages read apart becomes a character above
// 0xFF, which no byte equals.
bool decodesTo(QByteArrayView bytes, const QString& text) {
    return text.size() == bytes.size() && QStringView(text) == QLatin1StringView(bytes);
}

} // namespace

QString RecentTexts::decode(QByteArrayView bytes) {
    if (bytes.isEmpty() || bytes.size() > kLongestShared) return cp1252::decode(bytes);
    const size_t hash = qHash(bytes);
    Entry& entry = entries()[hash % kEntries];
    if (entry.hash == hash && decodesTo(bytes, entry.text)) return entry.text;
    entry.hash = hash;
    entry.text = cp1252::decode(bytes);
    return entry.text;
}
