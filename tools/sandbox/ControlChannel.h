#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <vector>

class QSocketNotifier;

namespace sandbox {

class ChatHub;
class EventScript;
class ResidentCrowd;

// Lines given to a running server, one command each, answered by one line each: the script's
// commands (but `wait` and `waitfor`) carried out at once, and questions about the server's
// state. Tests drive the server through it while their own client watches. The commands are
// listed in tools/sandbox/README.md.
class ControlChannel : public QObject {
    Q_OBJECT

public:
    ControlChannel(ChatHub& hub, EventScript& script, ResidentCrowd& crowd,
                   QObject* parent = nullptr);
    ~ControlChannel() override;

    // "ok", "error: " and why, or what was asked for.
    QString answer(const QString& line);
    // More commands: given the command word and the rest, true with the answer set when
    // the command is theirs.
    using Commands = std::function<bool(const QString&, const QString&, QString&)>;
    void addCommands(Commands commands) { m_more.push_back(std::move(commands)); }
    // Reads lines from `fd` as they come and writes each answer to standard output.
    void listen(int fd);

Q_SIGNALS:
    // The other end has closed the input.
    void closed();

private:
    void readInput();
    QString members(const QString& channel) const;

    ChatHub& m_hub;
    EventScript& m_script;
    ResidentCrowd& m_crowd;
    int m_fd = -1;
    QSocketNotifier* m_notifier = nullptr;
    QByteArray m_pending;
    std::vector<Commands> m_more;
};

} // namespace sandbox
