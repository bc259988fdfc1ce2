#include "commands/BlocksAndFilters.h"

#include "config/FileStamp.h"
#include "config/Folders.h"
#include "config/TextListFile.h"
#include "platform/LowerCase.h"
#include "presentation/UserColors.h"

#include <vector>

namespace {

// A list as kept in memory: the entries as written, and the same entries
// prepared for matching, so that the tests on every chat line touch no file
// and lower-case nothing twice.
class PatternList {
public:
    PatternList() { clear(); }

    const QStringList& entries() const { return m_entries; }

    void clear() {
        m_entries = QStringList{QString()};
        m_patterns = {QString()};
    }
    void add(const QString& entry) {
        if (m_entries.size() == 1 && m_entries.first().isEmpty()) {
            m_entries.first() = entry;
            m_patterns.front() = prepare(entry);
        } else {
            m_entries.append(entry);
            m_patterns.push_back(prepare(entry));
        }
    }
    void removeAt(qsizetype i) {
        m_entries.removeAt(i);
        m_patterns.erase(m_patterns.begin() + i);
        if (m_entries.isEmpty()) clear();
    }
    bool matches(const QString& text, bool skipEmpty) const {
        const QString lowered = LowerCase(text);
        for (size_t i = 0; i < m_patterns.size(); ++i) {
            if (skipEmpty && m_entries[qsizetype(i)].isEmpty()) continue;
            if (matchPrepared(lowered, m_patterns[i])) return true;
        }
        return false;
    }

    // The pattern lower-cased, with the stand-ins for brackets resolved.
    static QString prepare(const QString& pattern) {
        QString out = pattern.toLower();
        for (QChar& c : out) {
            if (c == QChar(0xA7))
                c = u'[';
            else if (c == QChar(0xA8))
                c = u']';
        }
        return out;
    }

    // Whole text against whole pattern; '*' takes any run. The classic
    // two-finger walk: on a mismatch, the last star takes one character more.
    static bool matchPrepared(QStringView text, QStringView pattern) {
        qsizetype t = 0, p = 0, star = -1, resume = 0;
        while (t < text.size()) {
            if (p < pattern.size() && pattern[p] == u'*') {
                star = p++;
                resume = t;
            } else if (p < pattern.size() && pattern[p] == text[t]) {
                ++p;
                ++t;
            } else if (star >= 0) {
                p = star + 1;
                t = ++resume;
            } else {
                return false;
            }
        }
        while (p < pattern.size() && pattern[p] == u'*')
            ++p;
        return p == pattern.size();
    }

private:
    QStringList m_entries;
    std::vector<QString> m_patterns;
};

// A list and the stamp of the file it was last loaded from.
struct LoadedList {
    PatternList list;
    std::optional<FileStamp> stamp;
    quint64 lookedInBurst = 0;
};

LoadedList& blockList() {
    static LoadedList loaded;
    return loaded;
}

LoadedList& filterList() {
    static LoadedList loaded;
    return loaded;
}

// Loads the list again when its file changed on disk since the last load, so
// that a hand edit counts from the next line on. A file that is gone keeps
// the list as it is: the next load creates it empty.
PatternList& current(LoadedList& loaded, const char* name, void (*load)()) {
    // Within a burst the file is looked at once.
    const quint64 burst = FileStamp::burst();
    if (burst != 0 && loaded.lookedInBurst == burst) return loaded.list;
    loaded.lookedInBurst = burst;
    const std::optional<FileStamp> now =
        FileStamp::ofInBurst(SettingsFilePath(QLatin1String(name)));
    if (now && now != loaded.stamp) load();
    return loaded.list;
}

PatternList& blocks() {
    return current(blockList(), "BlockedUsers.ini", LoadBlocks);
}

PatternList& filters() {
    return current(filterList(), "MessageFilters.ini", LoadFilters);
}

// Fills the list from its file, created empty when missing, with the lines
// that count.
void loadList(LoadedList& loaded, const QString& path, bool (*counts)(const QString& line)) {
    loaded.list.clear();
    TouchFile(path);
    loaded.stamp = FileStamp::of(path);
    for (const QString& line : ReadTextLines(path)) {
        if (counts(line)) loaded.list.add(line);
    }
}

// The whole file replaced by the lines, then loaded again.
bool replaceFile(const QString& path, const QStringList& lines, void (*load)(),
                 QString* cause = nullptr) {
    const bool written = WriteTextLines(path, lines, cause);
    load();
    return written;
}

QString cutAtHash(const QString& name) {
    const qsizetype hash = name.indexOf(u'#');
    return hash < 0 ? name : name.left(hash);
}

// The first entry equal to the name as plain text, '*' being no wildcard.
qsizetype findEntry(const QString& name) {
    const QStringList& entries = blocks().entries();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (entries[i].toLower() == name.toLower()) return i;
    }
    return -1;
}

} // namespace

bool MatchesPattern(const QString& Text, const QString& Pattern) {
    return PatternList::matchPrepared(Text.toLower(), PatternList::prepare(Pattern));
}

QString BlockedUsersFile() {
    return GetSettingsPath() + QStringLiteral("BlockedUsers.ini");
}

QString MessageFiltersFile() {
    return GetSettingsPath() + QStringLiteral("MessageFilters.ini");
}

const QStringList& BlockedUsers() {
    return blocks().entries();
}

const QStringList& MessageFilters() {
    return filters().entries();
}

void LoadBlocks() {
    loadList(blockList(), BlockedUsersFile(), [](const QString& line) { return !line.isEmpty(); });
}

bool SaveBlocks(QString* cause) {
    LoadedList& loaded = blockList();
    const QString path = BlockedUsersFile();
    QStringList lines;
    for (const QString& entry : loaded.list.entries()) {
        if (!entry.isEmpty()) lines.append(entry);
    }
    if (!WriteTextLines(path, lines, cause)) return false;
    // What is on disk now is what the list holds.
    loaded.stamp = FileStamp::of(path);
    return true;
}

bool ReplaceBlockedUsersFile(const QStringList& lines) {
    const bool written = replaceFile(BlockedUsersFile(), lines, LoadBlocks);
    RecolorUserLists();
    return written;
}

// A block that did not reach the file would be gone at the next start:
// the list in memory goes back to what the file holds.
bool AddBlock(const QString& Name, QString* cause) {
    const QString name = cutAtHash(Name);
    if (findEntry(name) >= 0) return false;
    blocks().add(name);
    if (!SaveBlocks(cause)) {
        blocks().removeAt(findEntry(name));
        return false;
    }
    RecolorUserLists();
    return true;
}

bool RemoveBlock(const QString& Name, QString* cause) {
    const qsizetype at = findEntry(cutAtHash(Name));
    if (at < 0) return false;
    blocks().removeAt(at);
    if (!SaveBlocks(cause)) {
        LoadBlocks();
        return false;
    }
    RecolorUserLists();
    return true;
}

bool IsBlocked(const QString& Name) {
    return blocks().matches(cutAtHash(Name), false);
}

void LoadFilters() {
    loadList(filterList(), MessageFiltersFile(),
             [](const QString& line) { return line.contains(u'*'); });
}

bool ReplaceMessageFiltersFile(const QStringList& lines, QString* cause) {
    return replaceFile(MessageFiltersFile(), lines, LoadFilters, cause);
}

bool IsFiltered(const QString& Text) {
    return filters().matches(Text, true);
}
