#include "commands/BotMail.h"

#include "chat/BotElement.h"
#include "config/FileHandler.h"
#include "config/FileStamp.h"
#include "config/FileWrites.h"
#include "config/Folders.h"
#include "config/TextListFile.h"
#include "platform/Cp1252.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "session/ConnectionWrapper.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <limits>

namespace {

constexpr qint64 kEmptyFileSize = 10; // anything shorter holds no mail
constexpr int kFieldCount = 4;

// A line end or TAB inside a field would make the line unreadable.
QString field(QString text) {
    for (QChar& c : text) {
        if (c == u'\t' || c == u'\r' || c == u'\n') c = u' ';
    }
    return text;
}

QString mailFolder() {
    return GetProgramFolder() + QStringLiteral("/Mail");
}

// The lines of a file that may hold mail; none for a missing or tiny file.
QStringList mailLines(const QString& path) {
    if (QFileInfo(path).size() < kEmptyFileSize) return {};
    return ReadTextLines(path);
}

// Joins are many and mail is rare: a mailbox is read again only when its
// file, or the folder it is found in, changed since the last read, and what
// a join asks for is the number of mails waiting for someone.
struct Mailbox {
    std::optional<FileStamp> folder;
    std::optional<FileStamp> file;
    QString path;
    bool read = false;
    QHash<QString, int> waiting; // by recipient, lower-cased
};

int waitingMail(int Index, const QString& user) {
    static QHash<QString, Mailbox> mailboxes;
    const QString folder = mailFolder();
    const std::optional<FileStamp> folderNow =
        FileStamp::ofInBurst(folder, FileStamp::Kind::Folder);
    if (!folderNow) return 0;
    if (mailboxes.size() > 64) mailboxes.clear();
    Mailbox& box = mailboxes[Bots(Index).Config.Account().toLower()];
    if (box.folder != folderNow || box.path.isEmpty()) {
        box = Mailbox{};
        box.folder = folderNow;
        box.path = MailFile(Index);
    }
    const std::optional<FileStamp> fileNow = FileStamp::ofInBurst(box.path);
    if (!box.read || box.file != fileNow) {
        box.waiting.clear();
        for (const QString& line : mailLines(box.path)) {
            const QStringList fields = line.split(u'\t');
            if (fields.size() == kFieldCount) ++box.waiting[fields[0].toLower()];
        }
        box.file = fileNow;
        box.read = true;
    }
    return box.waiting.value(user.toLower());
}

// After the program's own write, what the disk holds now counts at once.
void noteWritten(int Index) {
    FileStamp::of(mailFolder(), FileStamp::Kind::Folder);
    FileStamp::of(MailFile(Index));
}

bool isFor(const QStringList& fields, const QString& user) {
    return fields[0].toLower() == user.toLower();
}

// Diablo II realms reach the account, not the character that joined.
QString whisperName(int Index, const QString& Username) {
    if (!IsDiabloRealm(Bots(Index).Config.Client())) return Username;
    return ConvertUsername(ConvertUsername(Username, false, -1), true, -1);
}

QString whenSent(const QString& date) {
    const qsizetype bar = date.indexOf(u'|');
    const QString time = bar < 0 ? date : date.left(bar);
    const QString day = bar < 0 ? QString() : date.mid(bar + 1).section(u'|', 0, 0);
    if (day == MailDateText(QDate::currentDate())) return QStringLiteral("at ") + time;
    return QStringLiteral("on ") + day + QStringLiteral(" at ") + time;
}

void queueMail(int Index, const QString& Username, const MailRecord& mail) {
    Bots(Index).Queue.append(QStringLiteral("/w ") + whisperName(Index, Username) + u' ' +
                             QString::number(mail.ID) + QStringLiteral(": ") + mail.Message +
                             QStringLiteral("   (From: ") + mail.From + u' ' + whenSent(mail.Date) +
                             u')');
}

// Mail that was read but stays in the file would be read again: the
// person at the keyboard hears of it.
void deleteRead(int Index, const QString& user, int Number) {
    QString cause;
    if (!DeleteMail(Index, user, Number, &cause) && !cause.isEmpty())
        WriteChat(Index, Status::Error,
                  QStringLiteral("Could not delete the mail read by ") + user +
                      QStringLiteral(" from ") + MailFile(Index) + QStringLiteral(": ") + cause +
                      u'.');
}

void readAll(int Index, const QString& Username) {
    const QString user = ConvertUsername(Username, false, -1);
    QList<MailRecord> mails;
    if (ReadMail(Index, user, mails)) {
        for (const MailRecord& mail : mails)
            queueMail(Index, Username, mail);
    }
    deleteRead(Index, user, -1);
}

// The number is taken as a typed number is, within 16 bits; anything else
// reads as no number.
void readOne(int Index, const QString& Username, const QString& numberText) {
    const qint32 number = LeadingNumber(numberText);
    if (number < 1 || number > std::numeric_limits<qint16>::max()) return;
    const QString user = ConvertUsername(Username, false, -1);
    QList<MailRecord> mails;
    if (!ReadMail(Index, user, mails) || mails.size() < number) return;
    queueMail(Index, Username, mails[number - 1]);
    deleteRead(Index, user, number);
}

} // namespace

// Account names know no case: a file of the account in another spelling is
// the same mailbox, as it would be on a file system that ignores case.
QString MailFile(int Index) {
    const QString name = SafeFileName(Bots(Index).Config.Account()) + QStringLiteral(".ini");
    const QDir folder(mailFolder());
    for (const QString& existing : folder.entryList(QDir::Files)) {
        if (existing.compare(name, Qt::CaseInsensitive) == 0) return folder.filePath(existing);
    }
    return folder.filePath(name);
}

QString MailTimeText(const QTime& time) {
    return FormatLongTime(time);
}

QString MailDateText(const QDate& date) {
    return QLocale::system().toString(date, QLocale::ShortFormat);
}

// Mail is between users: the folder and its files are the user's alone.
bool AddMail(int Index, const QString& To, const QString& Message, QString* cause) {
    if (!MakePrivateFolder(mailFolder(), cause)) return false;
    const QString date =
        MailTimeText(QTime::currentTime()) + u'|' + MailDateText(QDate::currentDate());
    const QString line = field(To) + u'\t' + field(Bots(Index).UniqueAccount) + u'\t' + date +
                         u'\t' + field(Message);
    const bool stored =
        AppendToFile(MailFile(Index), cp1252::encode(line) + "\r\n", cause, FileAccess::Private);
    noteWritten(Index);
    return stored;
}

bool ReadMail(int Index, const QString& User, QList<MailRecord>& Mails) {
    Mails.clear();
    for (const QString& line : mailLines(MailFile(Index))) {
        const QStringList fields = line.split(u'\t');
        if (fields.size() != kFieldCount || !isFor(fields, User)) continue;
        Mails.append({fields[0], fields[1], fields[3], fields[2], qint32(Mails.size() + 1)});
    }
    return !Mails.isEmpty();
}

bool HasMail(int Index, const QString& User) {
    const QString wanted = User.toLower();
    for (const QString& line : mailLines(MailFile(Index))) {
        if (line.left(wanted.size()).toLower() == wanted) return true;
    }
    return false;
}

bool DeleteMail(int Index, const QString& User, int Number, QString* cause) {
    QStringList kept;
    bool dropped = false;
    int count = 0;
    for (const QString& line : mailLines(MailFile(Index))) {
        const QStringList fields = line.split(u'\t');
        if (fields.size() != kFieldCount) continue;
        if (isFor(fields, User)) {
            ++count;
            if (Number == -1 || count == Number) {
                dropped = true;
                continue;
            }
        }
        kept.append(line);
    }
    if (!dropped) return false;
    const bool written = WriteTextLines(MailFile(Index), kept, cause, FileAccess::Private);
    noteWritten(Index);
    return written;
}

void NotifyMailOnJoin(int Index, const QString& Username) {
    const int waiting = waitingMail(Index, ConvertUsername(Username, false, -1));
    if (waiting == 0) return;
    Bots(Index).Queue.append(QStringLiteral("/w ") + whisperName(Index, Username) +
                             QStringLiteral(" You have ") + QString::number(waiting) +
                             QStringLiteral(" new mail message(s). Type !read 1 for one message, "
                                            "or !readall for all messages."));
}

bool AnswerMailRequest(int Index, const QString& Username, const QString& Text) {
    const QString lowered = Text.toLower();
    if (lowered == QLatin1String("!readall")) {
        readAll(Index, Username);
        return true;
    }
    if (Text.size() >= 7 && lowered.startsWith(QLatin1String("!read "))) {
        readOne(Index, Username, Text.mid(6));
        return true;
    }
    return false;
}
