#include "config/RegistryWrapper.h"

#include "config/FileWrites.h"
#include "config/Folders.h"
#include "config/RegText.h"
#include "platform/Cp1252.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringTokenizer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

struct Root {
    QLatin1StringView shortForm;
    QLatin1StringView longForm;
};

// The order matters: long forms are replaced in this order.
constexpr std::array<Root, 7> kRoots = {{
    {QLatin1StringView("HKCU"), QLatin1StringView("HKEY_CURRENT_USER")},
    {QLatin1StringView("HKLM"), QLatin1StringView("HKEY_LOCAL_MACHINE")},
    {QLatin1StringView("HKCR"), QLatin1StringView("HKEY_CLASSES_ROOT")},
    {QLatin1StringView("HKUS"), QLatin1StringView("HKEY_USERS")},
    {QLatin1StringView("HKPD"), QLatin1StringView("HKEY_PERFORMANCE_DATA")},
    {QLatin1StringView("HKDD"), QLatin1StringView("HKEY_DYN_DATA")},
    {QLatin1StringView("HKCC"), QLatin1StringView("HKEY_CURRENT_CONFIG")},
}};
constexpr int kCurrentUser = 0;
constexpr int kLocalMachine = 1;

constexpr qsizetype kMaxName = 255;
constexpr qsizetype kMaxStringRead = 255;

// DeleteKey answers like the registry call it stands for.
constexpr int kErrorGeneric = 1;
constexpr int kErrorNotFound = 2;
constexpr int kErrorAccessDenied = 5;

// Another process holding the store lets go of it only when it ends.
constexpr int kBusyTimeoutMs = 2000;

const char* const kSchema = R"sql(
CREATE TABLE IF NOT EXISTS keys(
    id      INTEGER PRIMARY KEY,
    parent  INTEGER,
    path    TEXT NOT NULL UNIQUE,
    name    TEXT NOT NULL,
    display TEXT NOT NULL
);
CREATE INDEX IF NOT EXISTS keys_by_parent ON keys(parent, path);
CREATE TABLE IF NOT EXISTS vals(
    id    INTEGER PRIMARY KEY,
    key   INTEGER NOT NULL,
    lname TEXT NOT NULL,
    name  TEXT NOT NULL,
    type  INTEGER NOT NULL,
    data  BLOB NOT NULL,
    UNIQUE(key, lname)
);
)sql";

bool isAscii(QStringView text) {
    for (QChar c : text) {
        if (c.unicode() >= 0x80) return false;
    }
    return true;
}

// The store keeps 8-bit text: what the code page cannot hold does not survive.
QString storeText(const QString& text) {
    if (isAscii(text)) return text;
    return cp1252::decode(cp1252::encode(text));
}

QString lookupName(const QString& name) {
    return storeText(name).toLower();
}

QString trimBlanks(QStringView text) {
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == u' ')
        ++start;
    while (end > start && text[end - 1] == u' ')
        --end;
    return text.mid(start, end - start).toString();
}

void bindText(sqlite3_stmt* stmt, int index, const QString& text) {
    sqlite3_bind_text16(stmt, index, text.utf16(), static_cast<int>(text.size() * 2),
                        SQLITE_TRANSIENT);
}

// For reads: the text outlives the statement's use, so it is not copied.
void bindLookup(sqlite3_stmt* stmt, int index, const QString& text) {
    sqlite3_bind_text16(stmt, index, text.utf16(), static_cast<int>(text.size() * 2),
                        SQLITE_STATIC);
}

QString columnText(sqlite3_stmt* stmt, int column) {
    const auto* data = static_cast<const char16_t*>(sqlite3_column_text16(stmt, column));
    const int bytes = sqlite3_column_bytes16(stmt, column);
    return QString::fromUtf16(data, bytes / 2);
}

QByteArray columnBlob(sqlite3_stmt* stmt, int column) {
    const void* data = sqlite3_column_blob(stmt, column);
    const int size = sqlite3_column_bytes(stmt, column);
    return QByteArray(static_cast<const char*>(data), size);
}

// Resets a shared statement when the operation that borrowed it is done.
class Use {
public:
    explicit Use(sqlite3_stmt* stmt) : stmt_(stmt) {}
    ~Use() {
        if (stmt_) {
            sqlite3_reset(stmt_);
            sqlite3_clear_bindings(stmt_);
        }
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    operator sqlite3_stmt*() const { return stmt_; }

private:
    sqlite3_stmt* stmt_;
};

bool isHexDigit(QChar c) {
    const char16_t u = c.unicode();
    return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'F') || (u >= 'a' && u <= 'f');
}

bool allHexDigits(QStringView text) {
    return std::all_of(text.begin(), text.end(), isHexDigit);
}

// A string as a reader gets it: fetched into a 255-byte buffer that also
// holds the end mark, cut at a NUL, without leading blanks.
QString stringRead(QByteArrayView bytes, const QString& defaultValue, bool defaultIfEmpty) {
    if (bytes.size() > kMaxStringRead) return defaultValue;
    if (bytes.size() == kMaxStringRead) bytes.chop(1);
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0) bytes.truncate(nul);
    qsizetype start = 0;
    while (start < bytes.size() && bytes[start] == ' ')
        ++start;
    if (start == bytes.size() && defaultIfEmpty) return defaultValue;
    return cp1252::decode(bytes.sliced(start));
}

// A file that exists and holds nothing, its journal included.
bool isEmptyFile(const QString& file) {
    const QFileInfo info(file);
    const QFileInfo journal(file + QStringLiteral("-wal"));
    return info.isFile() && info.size() == 0 && (!journal.exists() || journal.size() == 0);
}

// Why the store refused, in the user's words.
QString describeStoreFailure(int code, int errnum) {
    switch (code & 0xFF) {
    case SQLITE_FULL:
        return QStringLiteral("the disk is full");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return QStringLiteral("another program holds the settings store");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return QStringLiteral("the settings store is damaged");
    case SQLITE_READONLY:
        return errnum ? DescribeWriteError(errnum)
                      : QStringLiteral("the settings store is read-only");
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
        if (errnum) return DescribeWriteError(errnum);
        break;
    default:
        break;
    }
    return QString::fromUtf8(sqlite3_errstr(code));
}

} // namespace

// A parsed path: the root, and the key's full name as it is stored (short
// root, names in the code page, no empty elements) and as it is looked up.
struct RegistryWrapper::KeyPath {
    int root = -1;
    int depth = 0;
    QString display;
    QString lookup;

    bool valid() const { return root >= 0; }
    bool writable() const { return root >= 0 && root != kLocalMachine; }
    bool isRoot() const { return depth == 0; }

    static KeyPath below(int root, QStringView subPath) {
        KeyPath key;
        key.root = root;
        key.display = kRoots[root].shortForm;
        key.display.reserve(4 + subPath.size());
        for (QStringView name : QStringTokenizer(subPath, u'\\', Qt::SkipEmptyParts)) {
            key.display += u'\\';
            key.display += name;
            ++key.depth;
        }
        key.display = storeText(key.display);
        key.lookup = key.display.toLower();
        return key;
    }
};

struct RegistryWrapper::Value {
    QString name;
    int type = 0;
    QByteArray data;
    qint32 dword = 0;
};

// What reads found, absent values included. Bounded, though the settings a
// run reads again and again are few.
struct RegistryWrapper::ReadCache {
    static constexpr qsizetype kLimit = 8192;
    QHash<QString, std::optional<Value>> values;
};

// One write is one transaction; an operation made of several writes nests
// them in a savepoint, so a failed step undoes only its own part.
class RegistryWrapper::Transaction {
public:
    explicit Transaction(RegistryWrapper& store) : store_(store) {
        store_.forgetReads();
        if (!store_.db_) return;
        if (store_.transactionDepth_ == 0)
            active_ = store_.step(store_.begin_);
        else
            active_ = store_.exec("SAVEPOINT nested");
        if (active_)
            ++store_.transactionDepth_;
        else
            store_.fail();
    }
    ~Transaction() {
        if (active_) finish(false);
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool active() const { return active_; }

    bool commit() { return active_ && finish(true); }

private:
    bool finish(bool keep) {
        // Reads inside the transaction may have seen what a rollback undoes.
        store_.forgetReads();
        active_ = false;
        const bool outer = --store_.transactionDepth_ == 0;
        if (outer) {
            if (keep && store_.step(store_.commit_)) return true;
            if (keep) store_.fail();
            store_.step(store_.rollback_);
            return false;
        }
        if (keep) return store_.exec("RELEASE nested");
        store_.exec("ROLLBACK TO nested");
        store_.exec("RELEASE nested");
        return false;
    }

    RegistryWrapper& store_;
    bool active_ = false;
};

RegistryWrapper& RegistryWrapper::instance() {
    static RegistryWrapper store(defaultStoreFile());
    return store;
}

QString RegistryWrapper::defaultStoreFile() {
    return GetSettingsPath() + QStringLiteral("settings.sqlite");
}

RegistryWrapper::RegistryWrapper(const QString& file)
    : file_(file), cache_(std::make_unique<ReadCache>()) {
    if (file == QLatin1StringView(":memory:")) {
        if (!openDatabase()) refuseOpen();
        return;
    }
    // An empty file is what is left of a store lost to a full disk or a
    // crash: the user hears of it instead of finding fresh settings.
    QString damage = isEmptyFile(file) ? QStringLiteral("was empty") : QString();
    if (damage.isEmpty()) {
        if (!createFile() || openDatabase()) return;
        damage = damageOf(openCode_);
        if (damage.isEmpty()) {
            refuseOpen();
            return;
        }
    }
    // Never replaced in silence: the old file stays beside the new one.
    if (moveAside(damage) && createFile() && !openDatabase()) refuseOpen();
}

// A store that did not open for a reason other than damage: in use, not
// writable, or another cause, each in its own words.
void RegistryWrapper::refuseOpen() {
    const int primary = openCode_ & 0xFF;
    if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED)
        refuse(OpenFailure::Locked, QStringLiteral("another Corvantide that runs with this home "
                                                   "holds it; close that one first"));
    else if (primary == SQLITE_READONLY || primary == SQLITE_PERM || primary == SQLITE_CANTOPEN)
        refuseUnwritable(openErrno_ ? openErrno_ : EACCES);
    else
        refuse(OpenFailure::Other, describeStoreFailure(openCode_, openErrno_));
}

// Passwords and product keys live here: the file is the user's alone.
bool RegistryWrapper::createFile() {
    const int fd = ::open(QFile::encodeName(file_).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        refuseUnwritable(errno);
        return false;
    }
    ::fchmod(fd, 0600);
    ::close(fd);
    return true;
}

bool RegistryWrapper::openDatabase() {
    openCode_ = SQLITE_OK;
    openErrno_ = 0;
    if (sqlite3_open_v2(QFile::encodeName(file_).constData(), &db_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) == SQLITE_OK) {
        sqlite3_busy_timeout(db_, kBusyTimeoutMs);
        // The running program owns the store: holding the lock spares every
        // read the file-lock calls that would otherwise cost more than the read.
        bool ok = exec("PRAGMA locking_mode=EXCLUSIVE") && exec("PRAGMA journal_mode=WAL") &&
                  exec("PRAGMA synchronous=FULL") && exec("BEGIN IMMEDIATE");
        if (ok && !passesQuickCheck()) {
            if (openCode_ == SQLITE_OK) openCode_ = SQLITE_CORRUPT;
            ok = false;
        } else if (ok && holdsForeignTables()) {
            openCode_ = SQLITE_NOTADB;
            ok = false;
        }
        ok = ok && exec(kSchema);
        for (const Root& root : kRoots) {
            if (!ok) break;
            const QString sql = QStringLiteral("INSERT OR IGNORE INTO keys(parent, path, name, "
                                               "display) VALUES(NULL, '%1', '%2', '%2')")
                                    .arg(QString(root.shortForm).toLower(), root.shortForm);
            ok = exec(sql.toUtf8().constData());
        }
        ok = ok && exec("COMMIT");
        if (ok && prepareStatements()) return true;
        // Tables of ours that do not take our statements: a damaged store.
        if (ok) openCode_ = SQLITE_CORRUPT;
    }
    if (openCode_ == SQLITE_OK && db_) {
        openCode_ = sqlite3_extended_errcode(db_);
        openErrno_ = sqlite3_system_errno(db_);
    }
    close();
    return false;
}

bool RegistryWrapper::passesQuickCheck() {
    sqlite3_stmt* stmt = prepare("PRAGMA quick_check(1)");
    if (!stmt) return false;
    const bool ok = sqlite3_step(stmt) == SQLITE_ROW &&
                    QByteArrayView(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0))) ==
                        QByteArrayView("ok");
    if (!ok && db_) {
        // A lock or a read error is no damage; keep what the store said.
        const int code = sqlite3_extended_errcode(db_);
        if ((code & 0xFF) != SQLITE_OK && (code & 0xFF) != SQLITE_ROW &&
            (code & 0xFF) != SQLITE_DONE && (code & 0xFF) != SQLITE_CORRUPT) {
            openCode_ = code;
            openErrno_ = sqlite3_system_errno(db_);
        }
    }
    sqlite3_finalize(stmt);
    return ok;
}

// Another program's database, or our tables beside others.
bool RegistryWrapper::holdsForeignTables() {
    sqlite3_stmt* stmt = prepare("SELECT name FROM sqlite_master WHERE type = 'table'");
    if (!stmt) return false;
    bool foreign = false;
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        const QByteArray name(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)));
        if (name != "keys" && name != "vals") foreign = true;
    }
    sqlite3_finalize(stmt);
    return foreign;
}

bool RegistryWrapper::prepareStatements() {
    findKey_ = prepare("SELECT id, display FROM keys WHERE path = ?1");
    insertKey_ = prepare("INSERT INTO keys(parent, path, name, display) VALUES(?1, ?2, ?3, ?4)");
    deleteKey_ = prepare("DELETE FROM keys WHERE id = ?1");
    childKeys_ = prepare("SELECT id, name, display FROM keys WHERE parent = ?1 ORDER BY path");
    anyChild_ = prepare("SELECT 1 FROM keys WHERE parent = ?1 LIMIT 1");
    readValue_ = prepare("SELECT v.type, v.data FROM vals v JOIN keys k ON v.key = k.id "
                         "WHERE k.path = ?1 AND v.lname = ?2");
    writeValue_ = prepare("INSERT INTO vals(key, lname, name, type, data) "
                          "VALUES(?1, ?2, ?3, ?4, ?5) ON CONFLICT(key, lname) "
                          "DO UPDATE SET type = excluded.type, data = excluded.data");
    deleteValue_ = prepare("DELETE FROM vals WHERE key = ?1 AND lname = ?2");
    deleteValues_ = prepare("DELETE FROM vals WHERE key = ?1");
    listValues_ = prepare("SELECT name, type, data FROM vals WHERE key = ?1 ORDER BY id");
    begin_ = prepare("BEGIN IMMEDIATE");
    commit_ = prepare("COMMIT");
    rollback_ = prepare("ROLLBACK");
    return findKey_ && insertKey_ && deleteKey_ && childKeys_ && anyChild_ && readValue_ &&
           writeValue_ && deleteValue_ && deleteValues_ && listValues_ && begin_ && commit_ &&
           rollback_;
}

// What makes the file no settings store; empty when the refusal has another
// cause.
QString RegistryWrapper::damageOf(int code) const {
    switch (code & 0xFF) {
    case SQLITE_NOTADB:
        return QStringLiteral("was not a settings store");
    case SQLITE_CORRUPT:
        return QStringLiteral("was damaged");
    default:
        return {};
    }
}

void RegistryWrapper::refuse(OpenFailure failure, const QString& why) {
    close();
    openFailure_ = failure;
    openError_ = QStringLiteral("Could not open the settings store %1: %2.").arg(file_, why);
    lastError_ = why;
}

// Which of file, folder or file system refuses writes decides the words.
void RegistryWrapper::refuseUnwritable(int errnum) {
    const QByteArray file = QFile::encodeName(file_);
    const QString folder = QFileInfo(file_).absolutePath();
    struct statvfs volume {};
    if (errnum == EROFS || (::statvfs(QFile::encodeName(folder).constData(), &volume) == 0 &&
                            (volume.f_flag & ST_RDONLY)))
        refuse(OpenFailure::ReadOnly,
               QStringLiteral("the file system that holds it is mounted read-only"));
    else if (::access(file.constData(), F_OK) == 0 && ::access(file.constData(), W_OK) != 0)
        refuse(OpenFailure::ReadOnly,
               QStringLiteral("the file is read-only; allow writing to it (chmod u+w)"));
    else if (::access(QFile::encodeName(folder).constData(), W_OK) != 0)
        refuse(OpenFailure::ReadOnly,
               QStringLiteral("the folder %1 is read-only; allow writing to it").arg(folder));
    else if (errnum == EACCES || errnum == EPERM)
        refuse(OpenFailure::ReadOnly,
               QStringLiteral("it cannot be written (%1)").arg(DescribeWriteError(errnum)));
    else
        refuse(OpenFailure::Other, DescribeWriteError(errnum));
}

bool RegistryWrapper::moveAside(const QString& damage) {
    close();
    const QString stamp =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    QString target = file_ + QStringLiteral(".damaged-") + stamp;
    for (int n = 2; QFileInfo::exists(target); ++n)
        target = file_ + QStringLiteral(".damaged-") + stamp + u'-' + QString::number(n);
    const QByteArray from = QFile::encodeName(file_);
    if (::rename(from.constData(), QFile::encodeName(target).constData()) != 0) {
        refuse(OpenFailure::Damaged, QStringLiteral("it %1 and could not be moved aside (%2)")
                                         .arg(damage, DescribeWriteError(errno)));
        return false;
    }
    // The old file's journal belongs to it: left in place it would be
    // played into the fresh store.
    ::rename((from + "-wal").constData(),
             QFile::encodeName(target + QStringLiteral("-wal")).constData());
    ::unlink((from + "-shm").constData());
    movedAside_ = target;
    movedAsideNotice_ = QStringLiteral("The settings store %1 %2; it was moved aside to %3 and "
                                       "Corvantide goes on with fresh settings.")
                            .arg(file_, damage, target);
    return true;
}

int RegistryWrapper::fail() {
    lastError_ =
        db_ ? describeStoreFailure(sqlite3_extended_errcode(db_), sqlite3_system_errno(db_))
            : QStringLiteral("the settings store is not open");
    return 0;
}

RegistryWrapper::~RegistryWrapper() {
    close();
}

void RegistryWrapper::close() {
    forgetReads();
    for (sqlite3_stmt** stmt :
         {&findKey_, &insertKey_, &deleteKey_, &childKeys_, &anyChild_, &readValue_, &writeValue_,
          &deleteValue_, &deleteValues_, &listValues_, &begin_, &commit_, &rollback_}) {
        sqlite3_finalize(*stmt);
        *stmt = nullptr;
    }
    if (db_) sqlite3_close(db_);
    db_ = nullptr;
}

bool RegistryWrapper::exec(const char* sql) {
    return db_ && sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

sqlite3_stmt* RegistryWrapper::prepare(const char* sql) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr) != SQLITE_OK)
        return nullptr;
    return stmt;
}

bool RegistryWrapper::step(sqlite3_stmt* stmt) {
    const int rc = sqlite3_step(stmt);
    sqlite3_reset(stmt);
    return rc == SQLITE_DONE || rc == SQLITE_ROW;
}

// Path grammar: long root forms become short ones wherever they stand, the
// root is the first four characters, and empty elements are ignored.
RegistryWrapper::KeyPath RegistryWrapper::splitKeyPath(const QString& path) {
    QString text = path;
    if (text.contains(QLatin1StringView("HKEY_"), Qt::CaseInsensitive)) {
        for (const Root& root : kRoots)
            text.replace(root.longForm, root.shortForm, Qt::CaseInsensitive);
    }
    const qsizetype slash = text.indexOf(u'\\');
    const QStringView rootText = slash < 0 ? QStringView(text) : QStringView(text).left(4);
    for (int i = 0; i < int(kRoots.size()); ++i) {
        if (rootText.compare(kRoots[i].shortForm, Qt::CaseInsensitive) == 0)
            return KeyPath::below(i,
                                  slash < 0 ? QStringView() : QStringView(text).sliced(slash + 1));
    }
    return {};
}

QString RegistryWrapper::unwritableRoot(const KeyPath& key) {
    return key.valid() ? QStringLiteral("HKEY_LOCAL_MACHINE is read-only here")
                       : QStringLiteral("the key's root is unknown");
}

RegistryWrapper::KeyPath RegistryWrapper::belowCurrentUser(const QString& subPath) {
    return KeyPath::below(kCurrentUser, subPath);
}

qint64 RegistryWrapper::keyId(const KeyPath& key, QString* display) {
    if (!key.valid() || !db_) return -1;
    Use stmt(findKey_);
    bindLookup(stmt, 1, key.lookup);
    if (sqlite3_step(stmt) != SQLITE_ROW) return -1;
    if (display) *display = columnText(stmt, 1);
    return sqlite3_column_int64(stmt, 0);
}

// Creates the key and its missing parents; -1 on failure.
qint64 RegistryWrapper::ensureKey(const KeyPath& key) {
    if (!key.writable()) {
        lastError_ = unwritableRoot(key);
        return -1;
    }
    qint64 id = keyId(key);
    if (id >= 0) return id;
    Transaction transaction(*this);
    if (!transaction.active()) return -1;
    // Walk down from the root, making each missing key on the way.
    KeyPath prefix = KeyPath::below(key.root, {});
    id = keyId(prefix);
    for (QStringView name : QStringTokenizer(QStringView(key.display).sliced(prefix.display.size()),
                                             u'\\', Qt::SkipEmptyParts)) {
        if (name.size() > kMaxName) {
            lastError_ = QStringLiteral("a key name is longer than 255 characters");
            return -1;
        }
        prefix.display += u'\\';
        prefix.display += name;
        prefix.lookup = prefix.display.toLower();
        const qint64 existing = keyId(prefix);
        if (existing >= 0) {
            id = existing;
            continue;
        }
        Use insert(insertKey_);
        sqlite3_bind_int64(insert, 1, id);
        bindText(insert, 2, prefix.lookup);
        bindText(insert, 3, name.toString());
        bindText(insert, 4, prefix.display);
        if (sqlite3_step(insert) != SQLITE_DONE) {
            fail();
            return -1;
        }
        id = sqlite3_last_insert_rowid(db_);
    }
    return transaction.commit() ? id : -1;
}

bool RegistryWrapper::hasSubkeys(qint64 id) {
    Use stmt(anyChild_);
    sqlite3_bind_int64(stmt, 1, id);
    return sqlite3_step(stmt) == SQLITE_ROW;
}

bool RegistryWrapper::removeKey(qint64 id) {
    Transaction transaction(*this);
    {
        Use values(deleteValues_);
        sqlite3_bind_int64(values, 1, id);
        if (sqlite3_step(values) != SQLITE_DONE) return fail();
    }
    {
        Use key(deleteKey_);
        sqlite3_bind_int64(key, 1, id);
        if (sqlite3_step(key) != SQLITE_DONE) return fail();
    }
    return transaction.commit();
}

QList<RegistryWrapper::Child> RegistryWrapper::children(qint64 id) {
    QList<Child> result;
    Use stmt(childKeys_);
    sqlite3_bind_int64(stmt, 1, id);
    while (sqlite3_step(stmt) == SQLITE_ROW)
        result.append({sqlite3_column_int64(stmt, 0), columnText(stmt, 1), columnText(stmt, 2)});
    return result;
}

QList<RegistryWrapper::Value> RegistryWrapper::values(qint64 id) {
    QList<Value> result;
    Use stmt(listValues_);
    sqlite3_bind_int64(stmt, 1, id);
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        Value value;
        value.name = columnText(stmt, 0);
        value.type = sqlite3_column_int(stmt, 1);
        if (value.type == TypeDword)
            value.dword = sqlite3_column_int(stmt, 2);
        else
            value.data = columnBlob(stmt, 2);
        result.append(value);
    }
    return result;
}

bool RegistryWrapper::readValue(const KeyPath& key, const QString& name, Value& out) {
    if (!key.valid() || !db_) return false;
    const QString valueName = lookupName(name);
    Use stmt(readValue_);
    bindLookup(stmt, 1, key.lookup);
    bindLookup(stmt, 2, valueName);
    if (sqlite3_step(stmt) != SQLITE_ROW) return false;
    out.type = sqlite3_column_int(stmt, 0);
    if (out.type == TypeDword)
        out.dword = sqlite3_column_int(stmt, 1);
    else
        out.data = columnBlob(stmt, 1);
    return true;
}

bool RegistryWrapper::cachedRead(const QString& path, const QString& name, Value& out) {
    QString key = path;
    key += QChar(0);
    key += name;
    const auto known = cache_->values.constFind(key);
    if (known != cache_->values.cend()) {
        if (*known) out = **known;
        return known->has_value();
    }
    std::optional<Value> found;
    if (Value value; readValue(splitKeyPath(path), name, value)) found = std::move(value);
    if (cache_->values.size() >= ReadCache::kLimit) cache_->values.clear();
    cache_->values.insert(key, found);
    if (found) out = *found;
    return found.has_value();
}

void RegistryWrapper::forgetReads() {
    ++writeCount_;
    if (cache_) cache_->values.clear();
}

int RegistryWrapper::writeValue(const QString& path, const QString& name, int type,
                                const QByteArray& data, qint32 dword) {
    const KeyPath key = splitKeyPath(path);
    if (!key.writable()) {
        lastError_ = unwritableRoot(key);
        return 0;
    }
    if (name.size() > kMaxName) {
        lastError_ = QStringLiteral("a value name is longer than 255 characters");
        return 0;
    }
    if (!db_) return fail();
    Transaction transaction(*this);
    if (!transaction.active()) return 0;
    qint64 id = keyId(key);
    if (id < 0) {
        if (!createKeyIfDoesntExists_) {
            lastError_ = QStringLiteral("the key does not exist");
            return 0;
        }
        id = ensureKey(key);
        if (id < 0) return 0;
    }
    const QString stored = storeText(name);
    {
        Use stmt(writeValue_);
        sqlite3_bind_int64(stmt, 1, id);
        bindText(stmt, 2, stored.toLower());
        bindText(stmt, 3, stored);
        sqlite3_bind_int(stmt, 4, type);
        if (type == TypeDword)
            sqlite3_bind_int(stmt, 5, dword);
        else
            sqlite3_bind_blob(stmt, 5, data.constData(), static_cast<int>(data.size()),
                              SQLITE_TRANSIENT);
        if (sqlite3_step(stmt) != SQLITE_DONE) return fail();
    }
    return transaction.commit() ? 1 : 0;
}

int RegistryWrapper::CreateKey(const QString& path) {
    return ensureKey(splitKeyPath(path)) >= 0 ? 1 : 0;
}

int RegistryWrapper::KillKey(const QString& path) {
    const KeyPath key = splitKeyPath(path);
    const qint64 id = keyId(key);
    if (id < 0) return 0;
    if (!key.isRoot() && !hasSubkeys(id)) removeKey(id);
    return 1;
}

int RegistryWrapper::DeleteKey(const QString& subPath) {
    const KeyPath key = belowCurrentUser(subPath);
    if (key.isRoot()) return kErrorAccessDenied;
    const qint64 id = keyId(key);
    if (id < 0) return kErrorNotFound;
    if (hasSubkeys(id)) return kErrorAccessDenied;
    return removeKey(id) ? 0 : kErrorGeneric;
}

bool RegistryWrapper::KeyExists(const QString& path) {
    return keyId(splitKeyPath(path)) >= 0;
}

bool RegistryWrapper::HaveSubkey(const QString& path) {
    const qint64 id = keyId(splitKeyPath(path));
    return id >= 0 && hasSubkeys(id);
}

int RegistryWrapper::EnumKeys(const QString& path, QStringList& names) {
    names = QStringList{QString()};
    const qint64 id = keyId(splitKeyPath(path));
    if (id < 0) return -1;
    const QList<Child> list = children(id);
    if (list.isEmpty()) return 0;
    names.clear();
    for (const Child& child : list)
        names.append(child.name);
    return int(names.size());
}

// Copies the dword values, then the string values, of Parent\Source into a
// new Parent\Target; binary values stay behind. Refuses a source that has
// subkeys and a target that exists.
bool RegistryWrapper::copyKey(const QString& parent, const QString& sourceName,
                              const QString& targetName) {
    const QString base = parent + u'\\';
    const KeyPath source = splitKeyPath(base + sourceName);
    const KeyPath target = splitKeyPath(base + targetName);
    const qint64 sourceId = keyId(source);
    if (sourceId < 0 || keyId(target) >= 0 || hasSubkeys(sourceId)) return false;
    Transaction transaction(*this);
    const qint64 targetId = ensureKey(target);
    if (targetId < 0) return false;
    const QList<Value> list = values(sourceId);
    for (int type : {int(TypeDword), int(TypeString)}) {
        for (const Value& value : list) {
            if (value.type != type) continue;
            Use stmt(writeValue_);
            sqlite3_bind_int64(stmt, 1, targetId);
            bindText(stmt, 2, value.name.toLower());
            bindText(stmt, 3, value.name);
            sqlite3_bind_int(stmt, 4, type);
            if (type == TypeDword)
                sqlite3_bind_int(stmt, 5, value.dword);
            else
                sqlite3_bind_blob(stmt, 5, value.data.constData(), int(value.data.size()),
                                  SQLITE_TRANSIENT);
            if (sqlite3_step(stmt) != SQLITE_DONE) return false;
        }
    }
    return transaction.commit();
}

bool RegistryWrapper::RenameKey(const QString& parent, const QString& oldName,
                                const QString& newName) {
    if (lookupName(oldName) == lookupName(newName)) return true;
    Transaction transaction(*this);
    if (!copyKey(parent, oldName, newName)) return false;
    // Profiles live below HKCU; the old key goes by its path below that root.
    DeleteKey(parent.mid(5) + u'\\' + oldName);
    return transaction.commit();
}

bool RegistryWrapper::CloneKey(const QString& parent, const QString& sourceName,
                               const QString& targetName) {
    if (lookupName(sourceName) == lookupName(targetName)) return false;
    return copyKey(parent, sourceName, targetName);
}

int RegistryWrapper::WriteSTRING(const QString& path, const QString& name, const QString& value) {
    const QString valueName = name == u"@" ? QString() : name;
    return writeValue(path, valueName, TypeString, cp1252::encode(value), 0);
}

QString RegistryWrapper::ReadSTRING(const QString& path, const QString& name,
                                    const QString& defaultValue, bool defaultIfEmpty) {
    Value value;
    if (!cachedRead(path, name, value) || value.type != TypeString) return defaultValue;
    return stringRead(value.data, defaultValue, defaultIfEmpty);
}

int RegistryWrapper::WriteDWORD(const QString& path, const QString& name, qint32 value) {
    return writeValue(path, name, TypeDword, {}, value);
}

qint32 RegistryWrapper::ReadDWORD(const QString& path, const QString& name, qint32 defaultValue) {
    Value value;
    if (!cachedRead(path, name, value) || value.type != TypeDword) return defaultValue;
    return value.dword;
}

int RegistryWrapper::WriteBinary(const QString& path, const QString& name, const QString& hexText) {
    bool ok = false;
    const QByteArray bytes = StrToBin(hexText, &ok);
    if (!ok) return 0;
    return writeValue(path, name, TypeBinary, bytes, 0);
}

QString RegistryWrapper::ReadBinary(const QString& path, const QString& name,
                                    const QString& defaultValue) {
    Value value;
    if (!cachedRead(path, name, value) || value.type != TypeBinary) return defaultValue;
    return trimBlanks(BinToStr(value.data));
}

int RegistryWrapper::KillValue(const QString& path, const QString& name) {
    const KeyPath key = splitKeyPath(path);
    const qint64 id = keyId(key);
    if (id < 0) return 0;
    Transaction transaction(*this);
    {
        Use stmt(deleteValue_);
        sqlite3_bind_int64(stmt, 1, id);
        bindText(stmt, 2, lookupName(name));
        sqlite3_step(stmt);
    }
    transaction.commit();
    return 1;
}

bool RegistryWrapper::ValueExists(const QString& path, const QString& name) {
    Value value;
    return cachedRead(path, name, value);
}

int RegistryWrapper::EnumValues(const QString& path, QStringList& names, QStringList& values,
                                int type) {
    names = QStringList{QString()};
    values = QStringList{QString()};
    const qint64 id = keyId(splitKeyPath(path));
    if (id < 0) return -1;
    QStringList foundNames;
    QStringList foundValues;
    for (const Value& value : this->values(id)) {
        if (type != TypeAny && value.type != type) continue;
        QString text;
        if (value.type == TypeString)
            text = stringRead(value.data, QString(), false);
        else if (value.type == TypeDword)
            text = QString::number(value.dword);
        else if (value.type == TypeBinary)
            text = trimBlanks(BinToStr(
                QByteArrayView(value.data).first(std::min(value.data.size(), kMaxStringRead))));
        foundNames.append(trimBlanks(value.name));
        foundValues.append(text);
    }
    if (foundNames.isEmpty()) return 0;
    names = foundNames;
    values = foundValues;
    return int(names.size());
}

bool RegistryWrapper::exportSection(qint64 id, const QString& display, QIODevice& file,
                                    bool recursive,
                                    const std::function<void(const QString&)>& progress) {
    // Stored paths start with the short root; the file names the long one.
    QString header = display.mid(4);
    for (const Root& root : kRoots) {
        if (QStringView(display).left(4) == root.shortForm) header.prepend(root.longForm);
    }
    if (progress) {
        progress(header);
        if (QCoreApplication::instance()) QCoreApplication::processEvents();
    }
    const QList<Value> list = values(id);
    // The default value's line always stands first, then strings, binary
    // data and numbers, whatever their order in the store.
    QString defaultLine = QStringLiteral("@=\"\"\r\n");
    QString strings;
    QString binaries;
    QString dwords;
    for (const Value& value : list) {
        const QString line = regtext::valueLine(value.name, value.type, value.data, value.dword) +
                             QStringLiteral("\r\n");
        if (value.type == TypeString && value.name.isEmpty())
            defaultLine = line;
        else if (value.type == TypeString)
            strings += line;
        else if (value.type == TypeBinary)
            binaries += line;
        else if (value.type == TypeDword)
            dwords += line;
    }
    const QString section = u'[' + header + QStringLiteral("]\r\n") + defaultLine + strings +
                            binaries + dwords + QStringLiteral("\r\n");
    const QByteArray bytes = cp1252::encode(section);
    if (file.write(bytes) != bytes.size()) return false;
    if (!recursive) return true;
    for (const Child& child : children(id)) {
        if (!exportSection(child.id, child.display, file, recursive, progress)) return false;
    }
    return true;
}

bool RegistryWrapper::ExportToReg(const QString& path, const QString& fileName, bool recursive,
                                  const std::function<void(const QString&)>& progress) {
    if (QFile::exists(fileName)) return false;
    QString display;
    const qint64 id = keyId(splitKeyPath(path), &display);
    if (id < 0) return false;
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return false;
    if (file.write("REGEDIT4\r\n\r\n") < 0) return false;
    return exportSection(id, display, file, recursive, progress) && file.flush();
}

bool RegistryWrapper::ImportFromReg(const QString& fileName, ImportReport* report) {
    createKeyIfDoesntExists_ = true;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) return false;
    return ImportRegText(file.readAll(), report);
}

bool RegistryWrapper::ImportRegText(QByteArrayView text, ImportReport* report) {
    ImportReport ownReport;
    ImportReport& r = report ? *report : ownReport;
    r = {};
    createKeyIfDoesntExists_ = true;
    const QStringList lines = cp1252::decode(text).split(QStringLiteral("\r\n"));
    if (lines.first().toUpper() != u"REGEDIT4") return false;
    // A file applies as far as the store takes it: what came before a
    // refused write stays.
    Transaction transaction(*this);
    QString key; // empty before the first section and in a skipped one
    bool inSection = false;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QString where = QStringLiteral("line %1: ").arg(i + 1);
        QString line = trimBlanks(lines[i]);
        if (line.isEmpty() || line.startsWith(u';')) continue;
        if (line.startsWith(u'[')) {
            key = importSection(line, where, r);
            inSection = true;
            continue;
        }
        if (key.isEmpty()) {
            // The values of a removed or refused key were noted with it.
            if (!inSection)
                r.notes.append(where + QStringLiteral("a value before the first [key]; skipped: ") +
                               regtext::visible(line));
            continue;
        }
        // Long hex data goes on over the lines that follow a backslash.
        QString name;
        QString error;
        const qsizetype start = regtext::dataStart(line, name, error);
        while (start >= 0 && regtext::continues(QStringView(line).mid(start)) &&
               i + 1 < lines.size()) {
            line = trimBlanks(line).chopped(1) + trimBlanks(lines[++i]);
        }
        if (!importValue(key, line, where, r)) {
            if (!transaction.commit()) r.values = 0;
            return false;
        }
    }
    if (!transaction.commit()) {
        r.failure = QStringLiteral("nothing was saved: ") + lastError_;
        r.values = 0;
        return false;
    }
    return true;
}

// The key of a section line, or empty when its values are to be passed
// over: a removal, or a key that cannot be written.
QString RegistryWrapper::importSection(const QString& line, const QString& where,
                                       ImportReport& report) {
    if (!line.endsWith(u']'))
        report.notes.append(where + QStringLiteral("the key has no closing ]; read as [") +
                            line.mid(1, line.size() - 2) + u']');
    const QString key = line.mid(1, line.size() - 2);
    if (key.startsWith(u'-')) {
        KillKey(key.mid(1));
        return {};
    }
    const KeyPath path = splitKeyPath(key);
    QString refusal;
    if (!path.writable())
        refusal = unwritableRoot(path);
    else if (std::ranges::any_of(key.split(u'\\'),
                                 [](const QString& name) { return name.size() > kMaxName; }))
        refusal = QStringLiteral("a key name is longer than 255 characters");
    if (refusal.isEmpty()) return key;
    report.notes.append(where + u'[' + key + QStringLiteral("]: ") + refusal +
                        QStringLiteral("; its values were skipped"));
    return {};
}

// False only when the store refused a write; a line it cannot read is
// noted and passed over.
bool RegistryWrapper::importValue(const QString& key, const QString& line, const QString& where,
                                  ImportReport& report) {
    regtext::Value value;
    QString error;
    const qsizetype start = regtext::dataStart(line, value.name, error);
    if (start >= 0 && value.name.contains(QChar(0)))
        error = QStringLiteral("the value name holds a NUL");
    else if (start >= 0 && value.name.size() > kMaxName)
        error = QStringLiteral("the value name is longer than 255 characters");
    else if (start >= 0)
        regtext::readData(QStringView(line).mid(start), value, error);
    if (!error.isEmpty()) {
        report.notes.append(where + error + QStringLiteral("; skipped: ") +
                            regtext::visible(QStringView(line).left(80)) +
                            (line.size() > 80 ? QStringLiteral("...") : QString()));
        return true;
    }
    if (!value.warning.isEmpty()) report.notes.append(where + value.warning);
    if (value.remove) {
        KillValue(key, value.name);
        return true;
    }
    // An empty default is no value: the line removes the one there is.
    const bool removesDefault =
        value.type == TypeString && value.name.isEmpty() && value.data.isEmpty();
    const int written = writeValue(key, value.name, value.type, value.data, value.dword);
    if (written && removesDefault) KillValue(key, QString());
    if (!written) {
        report.failure = where + QStringLiteral("not saved: ") + lastError_;
        return false;
    }
    if (!removesDefault) ++report.values;
    return true;
}

QString RegistryWrapper::BinToStr(QByteArrayView bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    QString text;
    text.reserve(bytes.size() * 3);
    for (char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += QLatin1Char(kDigits[value >> 4]);
        text += QLatin1Char(kDigits[value & 0xF]);
        text += u' ';
    }
    return text;
}

QByteArray RegistryWrapper::StrToBin(const QString& hexText, bool* ok) {
    QString digits = hexText;
    digits.remove(u' ');
    QByteArray bytes;
    bytes.reserve(digits.size() / 2 + 1);
    const bool valid = allHexDigits(digits);
    if (ok) *ok = valid;
    if (!valid) return {};
    // Pairs from the left; an odd last digit stands alone.
    for (qsizetype i = 0; i < digits.size(); i += 2)
        bytes.append(static_cast<char>(QStringView(digits).mid(i, 2).toUInt(nullptr, 16)));
    return bytes;
}

bool RegistryWrapper::isBinValid(const QString& hexText) {
    QString digits = hexText;
    digits.remove(u' ');
    if (digits.isEmpty()) return false;
    return allHexDigits(digits);
}
