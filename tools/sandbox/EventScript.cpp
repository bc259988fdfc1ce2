#include "sandbox/EventScript.h"

#include "platform/Cp1252.h"
#include "sandbox/BncsSession.h"
#include "sandbox/ChatHub.h"
#include "sandbox/Products.h"
#include "sandbox/Resident.h"

#include <QFile>

namespace sandbox {
namespace {

enum class Text { None, Optional, Required };

// Each command: how many words it takes before its text, at least and at most, and the text.
struct Shape {
    int least;
    int most;
    Text text;
};

const std::map<QString, Shape>& shapes() {
    static const std::map<QString, Shape> table{
        {"wait", {1, 1, Text::None}},       {"waitfor", {1, 3, Text::None}},
        {"user", {1, 4, Text::None}},       {"join", {1, 1, Text::Required}},
        {"leave", {1, 1, Text::None}},      {"talk", {1, 1, Text::Required}},
        {"emote", {1, 1, Text::Required}},  {"whisper", {2, 2, Text::Required}},
        {"flags", {2, 2, Text::None}},      {"broadcast", {0, 0, Text::Required}},
        {"info", {1, 1, Text::Required}},   {"error", {1, 1, Text::Required}},
        {"event", {5, 5, Text::Optional}},  {"frame", {2, 2, Text::Optional}},
        {"disconnect", {1, 1, Text::None}},
    };
    return table;
}

bool isHex(const QString& text) {
    QString digits = text;
    digits.remove(QLatin1Char(' '));
    return digits.size() % 2 == 0 && std::all_of(digits.begin(), digits.end(), [](QChar c) {
               const QChar lower = c.toLower();
               return c.isDigit() || (lower >= QLatin1Char('a') && lower <= QLatin1Char('f'));
           });
}

bool isNumber(const QString& word) {
    bool ok = false;
    word.toUInt(&ok, 0);
    return ok;
}

quint32 number(const QString& word) {
    return word.toUInt(nullptr, 0);
}

// Cuts `count` words off the front of a line; a word may be "quoted" to hold blanks.
QStringList takeWords(QString& line, int count) {
    QStringList words;
    while (words.size() < count) {
        line = line.trimmed();
        if (line.isEmpty()) break;
        if (line.startsWith(QLatin1Char('"'))) {
            const qsizetype end = line.indexOf(QLatin1Char('"'), 1);
            if (end < 0) break;
            words.append(line.mid(1, end - 1));
            line = line.mid(end + 1);
        } else {
            const qsizetype end = line.indexOf(QLatin1Char(' '));
            words.append(end < 0 ? line : line.left(end));
            line = end < 0 ? QString() : line.mid(end + 1);
        }
    }
    line = line.trimmed();
    return words;
}

bool isClient(const ChatUser* user) {
    return dynamic_cast<const BncsSession*>(user) != nullptr;
}

} // namespace

EventScript::EventScript(ChatHub& hub, QObject* parent) : QObject(parent), m_hub(hub) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_waiting = false;
        ++m_next;
        step();
    });
    // Queued: a change of presence is told from inside the hub's work, which a scripted
    // line must not break into.
    connect(
        &m_hub, &ChatHub::presenceChanged, this,
        [this] {
            if (m_waiting && !m_timer.isActive() && conditionHolds(m_lines[m_next])) {
                m_waiting = false;
                ++m_next;
                step();
            }
        },
        Qt::QueuedConnection);
}

EventScript::~EventScript() {
    for (auto& [name, user] : m_users)
        m_hub.exit(*user);
}

bool EventScript::loadFile(const QString& path, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }
    return load(QString::fromUtf8(file.readAll()), error);
}

bool EventScript::parse(const QString& text, int lineNumber, Line& line, QString& error) {
    QString rest = text.trimmed();
    const auto fail = [&](const QString& why) {
        error = why;
        return false;
    };
    line.number = lineNumber;
    const QString command = takeWords(rest, 1).value(0).toLower();
    const auto shape = shapes().find(command);
    if (shape == shapes().end()) return fail(QStringLiteral("unknown command %1").arg(command));
    line.words = QStringList{command} + takeWords(rest, shape->second.most);
    line.rest = rest;
    const int given = int(line.words.size()) - 1;
    if (given < shape->second.least)
        return fail(QStringLiteral("%1 needs more words").arg(command));
    if (shape->second.text == Text::Required && line.rest.isEmpty())
        return fail(QStringLiteral("%1 needs a text").arg(command));
    if (shape->second.text == Text::None && !line.rest.isEmpty())
        return fail(QStringLiteral("too many words for %1").arg(command));
    const QStringList& w = line.words;
    if (command == QLatin1String("wait") && !isNumber(w[1]))
        return fail(QStringLiteral("wait takes milliseconds"));
    if (command == QLatin1String("waitfor") && !((w[1] == QLatin1String("online") && given <= 2) ||
                                                 (w[1] == QLatin1String("channel") && given >= 2)))
        return fail(QStringLiteral("waitfor online [NAME] or waitfor channel CHANNEL [NAME]"));
    if (command == QLatin1String("user") &&
        ((given >= 2 && !findProduct(w[2])) || (given >= 3 && !isNumber(w[3])) ||
         (given >= 4 && !isNumber(w[4]))))
        return fail(QStringLiteral("user NAME [PRODUCT] [FLAGS] [PING]"));
    if (command == QLatin1String("flags") && !isNumber(w[2]))
        return fail(QStringLiteral("flags NAME FLAGS"));
    if (command == QLatin1String("event") &&
        (!isNumber(w[2]) || !isNumber(w[3]) || !isNumber(w[4])))
        return fail(QStringLiteral("event TARGET ID FLAGS PING NAME [TEXT]"));
    if (command == QLatin1String("frame") &&
        (!isNumber(w[2]) || number(w[2]) > 0xFF || !isHex(line.rest)))
        return fail(QStringLiteral("frame TARGET ID HEX"));
    return true;
}

bool EventScript::load(const QString& text, QString& error) {
    m_lines.clear();
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString trimmed = lines[i].trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#'))) continue;
        Line line;
        if (!parse(trimmed, i + 1, line, error)) {
            error = QStringLiteral("line %1: %2").arg(i + 1).arg(error);
            return false;
        }
        m_lines.append(line);
    }
    return true;
}

bool EventScript::runNow(const QString& text, QString& error) {
    Line line;
    if (!parse(text, 1, line, error)) return false;
    if (line.words[0].startsWith(QLatin1String("wait"))) {
        error = QStringLiteral("%1 belongs in a script").arg(line.words[0]);
        return false;
    }
    // What the line could not do comes back as the error instead of a problem signal.
    QString problem;
    m_problem = &problem;
    run(line);
    m_problem = nullptr;
    error = problem;
    return problem.isEmpty();
}

void EventScript::play() {
    m_next = 0;
    step();
}

void EventScript::step() {
    while (m_next < m_lines.size()) {
        const Line& line = m_lines[m_next];
        if (line.words[0] == QLatin1String("wait")) {
            m_waiting = true;
            m_timer.start(int(number(line.words[1])));
            return;
        }
        if (line.words[0] == QLatin1String("waitfor") && !conditionHolds(line)) {
            m_waiting = true;
            return;
        }
        run(line);
        ++m_next;
    }
    Q_EMIT done();
}

bool EventScript::conditionHolds(const Line& line) const {
    const QStringList& w = line.words;
    if (w[1] == QLatin1String("online")) {
        if (w.size() > 2) return isClient(m_hub.find(w[2]));
        const QList<ChatUser*> users = m_hub.users();
        return std::any_of(users.begin(), users.end(), isClient);
    }
    const ChannelRoom* room = m_hub.room(w[2]);
    if (!room) return false;
    const auto& members = room->members();
    return std::any_of(members.begin(), members.end(), [&](ChatUser* u) {
        return w.size() > 3 ? u == m_hub.find(w[3]) : isClient(u);
    });
}

void EventScript::run(const Line& line) {
    const QStringList& w = line.words;
    const QString& command = w[0];
    if (command == QLatin1String("waitfor")) return;
    if (command == QLatin1String("user") || command == QLatin1String("join")) {
        auto& user = m_users[w[1].toLower()];
        if (!user) {
            user = std::make_unique<Resident>(nullptr);
            user->product = findProduct(
                w.size() > 2 && command == QLatin1String("user") ? w[2] : QStringLiteral("STAR"));
            user->statstring = cp1252::decode(defaultStatstring(*user->product));
            if (command == QLatin1String("user")) {
                user->flags = w.size() > 3 ? number(w[3]) : 0;
                user->ping = w.size() > 4 ? number(w[4]) : 0;
            }
        }
        if (!m_hub.isInChat(*user)) m_hub.enter(*user, w[1]);
        if (command == QLatin1String("join"))
            m_hub.join(*user, line.rest, ChatHub::JoinMode::Forced);
        return;
    }
    if (command == QLatin1String("broadcast")) {
        m_hub.broadcast(line.rest);
        return;
    }
    if (command == QLatin1String("info") || command == QLatin1String("error") ||
        command == QLatin1String("event") || command == QLatin1String("frame")) {
        const QList<ChatUser*> to = targets(w[1]);
        if (to.isEmpty()) report(line, QStringLiteral("nobody is %1").arg(w[1]));
        for (ChatUser* user : to) {
            if (command == QLatin1String("info"))
                m_hub.info(*user, line.rest);
            else if (command == QLatin1String("error"))
                m_hub.error(*user, line.rest);
            else if (command == QLatin1String("event"))
                user->deliver({number(w[2]), number(w[3]), number(w[4]),
                               w[5] == QLatin1String("-") ? QString() : w[5], line.rest});
            else if (auto* client = dynamic_cast<BncsSession*>(user))
                client->sendRaw(quint8(number(w[2])), QByteArray::fromHex(line.rest.toLatin1()));
        }
        return;
    }
    if (command == QLatin1String("leave")) {
        // Only a scripted user: a client taken out of chat behind its session's back would
        // be left talking to nobody.
        const auto scripted = m_users.find(w[1].toLower());
        if (scripted == m_users.end())
            return report(line, QStringLiteral("%1 is not a scripted user").arg(w[1]));
        return m_hub.exit(*scripted->second);
    }
    ChatUser* user = target(line, w[1]);
    if (!user) return;
    if (command == QLatin1String("talk"))
        m_hub.talk(*user, line.rest);
    else if (command == QLatin1String("emote"))
        m_hub.emote(*user, line.rest);
    else if (command == QLatin1String("whisper"))
        m_hub.whisper(*user, w[2], line.rest);
    else if (command == QLatin1String("flags"))
        m_hub.updateFlags(*user, number(w[2]));
    else if (command == QLatin1String("disconnect"))
        isClient(user) ? user->dropSession() : m_hub.exit(*user);
}

ChatUser* EventScript::target(const Line& line, const QString& name) {
    ChatUser* user = m_hub.find(name);
    if (!user) report(line, QStringLiteral("%1 is not in chat").arg(name));
    return user;
}

QList<ChatUser*> EventScript::targets(const QString& name) const {
    if (name == QLatin1String("*")) return m_hub.users();
    ChatUser* user = m_hub.find(name);
    return user ? QList<ChatUser*>{user} : QList<ChatUser*>{};
}

void EventScript::report(const Line& line, const QString& text) {
    if (m_problem) {
        *m_problem = text;
        return;
    }
    Q_EMIT problem(QStringLiteral("script line %1: %2").arg(line.number).arg(text));
}

} // namespace sandbox
