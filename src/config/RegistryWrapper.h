#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class QIODevice;
struct sqlite3;
struct sqlite3_stmt;

// The settings tree: keys that hold typed, named values, addressed by paths
// such as "HKCU\Software\Corvantide4\Settings". The tree lives in one SQLite
// file; every write is its own transaction, so a killed process loses nothing
// that a write had already reported as done. The process holds the file's
// lock, so only its own writes change it: values once read are kept until the
// next write of any kind, which forgets them all.
//
// Results follow the registry conventions the rest of the program expects:
// writes give non-zero on success and 0 on failure, reads give the caller's
// default when the key or value is missing, and HKLM is an empty, read-only
// hive on this host.
class RegistryWrapper {
public:
    // Value types, by their registry numbers; -1 asks EnumValues for all.
    enum ValueType { TypeString = 1, TypeBinary = 3, TypeDword = 4, TypeAny = -1 };

    // The store of this process, in the settings folder. Set the home folder
    // (SetHomeFolder) before the first call if the run uses one.
    static RegistryWrapper& instance();
    static QString defaultStoreFile();

    // Why a store did not open; each calls for something else from the user.
    enum class OpenFailure { None, Locked, ReadOnly, Damaged, Other };

    // Opens (or creates, with mode 0600) the store at `file`; ":memory:" gives
    // a store that lives only as long as the object. A file that is no
    // settings store (empty, damaged, not a database) is moved aside under a
    // dated name and a fresh store takes its place: see movedAside().
    explicit RegistryWrapper(const QString& file);
    ~RegistryWrapper();
    RegistryWrapper(const RegistryWrapper&) = delete;
    RegistryWrapper& operator=(const RegistryWrapper&) = delete;

    bool isOpen() const { return db_ != nullptr; }
    QString fileName() const { return file_; }
    OpenFailure openFailure() const { return openFailure_; }
    // A line for the user: why the store did not open and what to do.
    QString openError() const { return openError_; }
    // Where the file that was no settings store went, and a line that says
    // so; both empty when nothing was moved.
    QString movedAside() const { return movedAside_; }
    QString movedAsideNotice() const { return movedAsideNotice_; }
    // Why the last write that failed did not reach the store ("the disk is
    // full"); callers ask after a write gave 0 or false.
    QString lastError() const { return lastError_; }

    // Moves on with every write (and every attempt at one): what a caller
    // worked out from the store holds as long as this number stays the same.
    quint64 writeCount() const { return writeCount_; }

    bool CreateKeyIfDoesntExists() const { return createKeyIfDoesntExists_; }
    void setCreateKeyIfDoesntExists(bool on) { createKeyIfDoesntExists_ = on; }

    int CreateKey(const QString& path);
    int KillKey(const QString& path);
    int DeleteKey(const QString& subPath);
    bool KeyExists(const QString& path);
    bool HaveSubkey(const QString& path);
    int EnumKeys(const QString& path, QStringList& names);
    bool RenameKey(const QString& parent, const QString& oldName, const QString& newName);
    bool CloneKey(const QString& parent, const QString& sourceName, const QString& targetName);

    int WriteSTRING(const QString& path, const QString& name, const QString& value);
    QString ReadSTRING(const QString& path, const QString& name, const QString& defaultValue = {},
                       bool defaultIfEmpty = false);
    int WriteDWORD(const QString& path, const QString& name, qint32 value);
    qint32 ReadDWORD(const QString& path, const QString& name, qint32 defaultValue = 0);
    int WriteBinary(const QString& path, const QString& name, const QString& hexText);
    QString ReadBinary(const QString& path, const QString& name, const QString& defaultValue = {});
    int KillValue(const QString& path, const QString& name);
    bool ValueExists(const QString& path, const QString& name);
    int EnumValues(const QString& path, QStringList& names, QStringList& values,
                   int type = TypeAny);

    // What an import did: how many values went in, each line it passed over
    // or read by a guess ("line 7: ..."), and why it stopped early.
    struct ImportReport {
        int values = 0;
        QStringList notes;
        QString failure;
    };

    // `progress` receives each section's key path before it is written.
    bool ExportToReg(const QString& path, const QString& fileName, bool recursive,
                     const std::function<void(const QString&)>& progress = {});
    bool ImportFromReg(const QString& fileName, ImportReport* report = nullptr);
    // The body of ImportFromReg, on text already read.
    bool ImportRegText(QByteArrayView text, ImportReport* report = nullptr);

    // "41 42 " <-> "AB". StrToBin sets *ok to false when a pair is not hex.
    static QString BinToStr(QByteArrayView bytes);
    static QByteArray StrToBin(const QString& hexText, bool* ok = nullptr);
    static bool isBinValid(const QString& hexText);

private:
    struct KeyPath;
    struct Value;
    struct Child {
        qint64 id;
        QString name;
        QString display;
    };
    class Transaction;
    friend class Transaction;

    static KeyPath splitKeyPath(const QString& path);
    static KeyPath belowCurrentUser(const QString& subPath);
    static QString unwritableRoot(const KeyPath& key);

    qint64 keyId(const KeyPath& key, QString* display = nullptr);
    qint64 ensureKey(const KeyPath& key);
    bool hasSubkeys(qint64 id);
    bool removeKey(qint64 id);
    QList<Child> children(qint64 id);
    QList<Value> values(qint64 id);
    bool readValue(const KeyPath& key, const QString& name, Value& out);
    // readValue through the cache, by the path and name as the caller spelled
    // them.
    bool cachedRead(const QString& path, const QString& name, Value& out);
    void forgetReads();
    int writeValue(const QString& path, const QString& name, int type, const QByteArray& data,
                   qint32 dword);
    bool copyKey(const QString& parent, const QString& sourceName, const QString& targetName);
    QString importSection(const QString& line, const QString& where, ImportReport& report);
    bool importValue(const QString& key, const QString& line, const QString& where,
                     ImportReport& report);
    bool exportSection(qint64 id, const QString& display, QIODevice& file, bool recursive,
                       const std::function<void(const QString&)>& progress);

    bool exec(const char* sql);
    bool step(sqlite3_stmt* stmt);
    sqlite3_stmt* prepare(const char* sql);
    void close();

    // Opening, told in its steps: the file, the database on it, and what a
    // refusal means.
    bool createFile();
    bool openDatabase();
    bool passesQuickCheck();
    bool holdsForeignTables();
    bool prepareStatements();
    QString damageOf(int code) const;
    void refuseOpen();
    void refuse(OpenFailure failure, const QString& why);
    void refuseUnwritable(int errnum);
    bool moveAside(const QString& damage);
    // Records why the store refused the operation under way; gives 0.
    int fail();

    QString lastError_;
    OpenFailure openFailure_ = OpenFailure::None;
    QString openError_;
    QString movedAside_;
    QString movedAsideNotice_;
    int openCode_ = 0;
    int openErrno_ = 0;

    QString file_;
    sqlite3* db_ = nullptr;
    int transactionDepth_ = 0;
    bool transactionFailed_ = false;
    bool createKeyIfDoesntExists_ = true;
    quint64 writeCount_ = 0;
    struct ReadCache;
    std::unique_ptr<ReadCache> cache_;

    sqlite3_stmt* findKey_ = nullptr;
    sqlite3_stmt* insertKey_ = nullptr;
    sqlite3_stmt* deleteKey_ = nullptr;
    sqlite3_stmt* childKeys_ = nullptr;
    sqlite3_stmt* anyChild_ = nullptr;
    sqlite3_stmt* readValue_ = nullptr;
    sqlite3_stmt* writeValue_ = nullptr;
    sqlite3_stmt* deleteValue_ = nullptr;
    sqlite3_stmt* deleteValues_ = nullptr;
    sqlite3_stmt* listValues_ = nullptr;
    sqlite3_stmt* begin_ = nullptr;
    sqlite3_stmt* commit_ = nullptr;
    sqlite3_stmt* rollback_ = nullptr;
};
