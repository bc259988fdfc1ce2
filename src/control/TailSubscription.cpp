#include "control/TailSubscription.h"

#include "chat/BotElement.h"
#include "control/FeedMessages.h"
#include "control/VerbResult.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>

namespace {

constexpr int kDefaultHistory = 10;
// A view holds far fewer lines than this.
constexpr int kLongestHistory = 100000;

QStringList requestWords(const QByteArray& line) {
    QStringList words;
    for (const QJsonValue& word :
         QJsonDocument::fromJson(line).object().value(QStringLiteral("args")).toArray())
        words.append(word.toString());
    return words;
}

void refuse(QLocalSocket* socket, const VerbResult& result) {
    const QJsonObject answer{{QStringLiteral("status"), result.status},
                             {QStringLiteral("out"), result.out},
                             {QStringLiteral("err"), result.err}};
    socket->write(QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n');
    socket->disconnectFromServer();
}

// `tail [PROFILE] [-n N]`: false when the words make no sense.
bool parseTail(const QStringList& args, QString& profile, int& history) {
    history = kDefaultHistory;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString& word = args[i];
        QString number;
        if (word == u"-n" || word == u"--lines") {
            if (++i >= args.size()) return false;
            number = args[i];
        } else if (word.startsWith(QStringLiteral("--lines="))) {
            number = word.mid(8);
        } else if (word.startsWith(QStringLiteral("-n"))) {
            number = word.mid(2);
        } else if (profile.isEmpty() && !word.startsWith(u'-')) {
            profile = word;
            continue;
        } else {
            return false;
        }
        bool ok = false;
        history = number.toInt(&ok);
        if (!ok || history < 0) return false;
        history = std::min(history, kLongestHistory);
    }
    return true;
}

QString nameOf(int slot) {
    return slot > 0 ? Bots(slot).Profile() : QString();
}

} // namespace

bool TailSubscription::Take(QLocalSocket* socket, const QByteArray& requestLine) {
    const QStringList args = requestWords(requestLine);
    if (args.value(0) != u"tail") return false;
    QString profile;
    int history = 0;
    if (!parseTail(args, profile, history)) {
        refuse(socket, VerbResult::usage(QStringLiteral("tail [PROFILE] [-n N]")));
        return true;
    }
    if (!profile.isEmpty() && SlotTable::instance().findProfile(profile) == 0) {
        const QString stored = ProfileLifecycle::FindProfile(profile);
        if (stored.isEmpty()) {
            refuse(socket, VerbResult::refused(QStringLiteral("No profile named ") +
                                               Quoted(profile) +
                                               QStringLiteral("; `corvantide profile list` "
                                                              "shows them.")));
            return true;
        }
        profile = stored;
    }
    // The request is whole: what the follower sends from now on is not read.
    QObject::disconnect(socket, &QLocalSocket::readyRead, nullptr, nullptr);
    auto* subscription = new TailSubscription(socket, profile);
    subscription->start(history);
    return true;
}

TailSubscription::TailSubscription(QLocalSocket* socket, const QString& profile)
    : QObject(socket), m_socket(socket), m_profile(profile) {
    SlotTable& table = SlotTable::instance();
    if (!profile.isEmpty()) {
        m_slot = table.findProfile(profile);
        if (m_slot > 0) m_profile = Bots(m_slot).Profile();
    }
    connect(socket, &QLocalSocket::readyRead, this, [socket] { socket->readAll(); });
    connect(socket, &QLocalSocket::bytesWritten, this, &TailSubscription::catchUp);
    connect(&ChatFeed::instance(), &ChatFeed::linesWritten, this,
            &TailSubscription::linesWritten);
    if (profile.isEmpty()) return;
    connect(&table, &SlotTable::slotLoaded, this, [this](int slot) {
        if (m_slot != 0 || nameOf(slot).compare(m_profile, Qt::CaseInsensitive) != 0) return;
        m_slot = slot;
        write(FeedMessages::Notice(Quoted(m_profile) + QStringLiteral(" was loaded.")));
    });
    connect(&table, &SlotTable::slotUnloaded, this, [this](int slot) {
        if (slot != m_slot) return;
        m_slot = 0;
        write(FeedMessages::Notice(Quoted(m_profile) +
                                   QStringLiteral(" was unloaded; its lines show again once it "
                                                  "is loaded.")));
    });
    connect(&table, &SlotTable::slotRenamed, this, [this](int slot) {
        if (slot != m_slot) return;
        const QString old = m_profile;
        m_profile = nameOf(slot);
        write(FeedMessages::Notice(Quoted(old) + QStringLiteral(" is now called ") +
                                   Quoted(m_profile) + u'.'));
    });
}

void TailSubscription::start(int history) {
    ChatFeed& feed = ChatFeed::instance();
    feed.flush();
    if (!m_profile.isEmpty() && m_slot == 0)
        write(FeedMessages::Notice(Quoted(m_profile) +
                                   QStringLiteral(" is not loaded; its lines show once it is.")));
    if (m_profile.isEmpty() || m_slot > 0) {
        for (const FeedLine& line : feed.recentLines(m_slot, history))
            sendLine(line);
    }
}

void TailSubscription::linesWritten(const QList<FeedLine>& lines) {
    if (!m_profile.isEmpty() && m_slot == 0) return;
    for (const FeedLine& line : lines) {
        if (line.slot == m_slot) sendLine(line);
    }
}

void TailSubscription::sendLine(const FeedLine& line) {
    catchUp();
    if (m_skipped > 0 || m_socket->bytesToWrite() > kQueueLimit) {
        ++m_skipped;
        return;
    }
    write(FeedMessages::Line(line, m_profile));
}

// Once the reader has taken half of what waited, it hears what it missed.
void TailSubscription::catchUp() {
    if (m_skipped == 0 || m_socket->bytesToWrite() > kQueueLimit / 2) return;
    write(FeedMessages::Skipped(m_skipped));
    m_skipped = 0;
}

void TailSubscription::write(const QByteArray& message) {
    if (m_socket->state() == QLocalSocket::ConnectedState) m_socket->write(message);
}
