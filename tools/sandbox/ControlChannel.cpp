#include "sandbox/ControlChannel.h"

#include "sandbox/ChatHub.h"
#include "sandbox/EventScript.h"
#include "sandbox/ResidentCrowd.h"

#include <QSocketNotifier>
#include <cstdio>
#include <unistd.h>

namespace sandbox {

ControlChannel::ControlChannel(ChatHub& hub, EventScript& script, ResidentCrowd& crowd,
                               QObject* parent)
    : QObject(parent), m_hub(hub), m_script(script), m_crowd(crowd) {}

ControlChannel::~ControlChannel() = default;

QString ControlChannel::answer(const QString& line) {
    const QString text = line.trimmed();
    const QString command = text.section(QLatin1Char(' '), 0, 0).toLower();
    const QString rest = text.section(QLatin1Char(' '), 1).trimmed();
    if (command == QLatin1String("members")) {
        if (rest.isEmpty()) return QStringLiteral("error: members CHANNEL");
        return members(rest);
    }
    if (command == QLatin1String("residents")) {
        if (rest == QLatin1String("pause"))
            m_crowd.pause();
        else if (rest == QLatin1String("resume"))
            m_crowd.resume();
        else
            return QStringLiteral("error: residents pause or residents resume");
        return QStringLiteral("ok");
    }
    QString reply;
    for (const Commands& more : m_more)
        if (more(command, rest, reply)) return reply;
    QString error;
    if (!m_script.runNow(text, error)) return QStringLiteral("error: ") + error;
    return QStringLiteral("ok");
}

// "members COUNT NAME:FLAGS ..." in the order the users came in; names as the server gave them.
QString ControlChannel::members(const QString& channel) const {
    const ChannelRoom* room = m_hub.room(channel);
    if (!room) return QStringLiteral("members 0");
    QString out = QStringLiteral("members %1").arg(room->size());
    for (const ChatUser* user : room->members())
        out += QStringLiteral(" %1:%2").arg(user->name()).arg(user->flags);
    return out;
}

void ControlChannel::listen(int fd) {
    m_fd = fd;
    m_notifier = new QSocketNotifier(fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &ControlChannel::readInput);
}

void ControlChannel::readInput() {
    char chunk[4096];
    const ssize_t n = ::read(m_fd, chunk, sizeof chunk);
    if (n <= 0) {
        m_notifier->setEnabled(false);
        Q_EMIT closed();
        return;
    }
    m_pending.append(chunk, qsizetype(n));
    // Every whole line of this read is carried out before the loop turns, so that lines sent
    // together reach the clients together.
    qsizetype end;
    while ((end = m_pending.indexOf('\n')) >= 0) {
        const QString line = QString::fromUtf8(m_pending.left(end));
        m_pending.remove(0, end + 1);
        if (line.trimmed().isEmpty()) continue;
        const QByteArray out = (answer(line) + QLatin1Char('\n')).toUtf8();
        std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
    }
    std::fflush(stdout);
}

} // namespace sandbox
