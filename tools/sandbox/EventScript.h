#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <map>
#include <memory>

namespace sandbox {

class ChatHub;
class ChatUser;
class Resident;

// A scripted sequence of server events, one command a line, played from the start of the
// server. The format is described in tools/sandbox/README.md.
class EventScript : public QObject {
    Q_OBJECT

public:
    explicit EventScript(ChatHub& hub, QObject* parent = nullptr);
    ~EventScript() override;

    // Checks every line; false and "line N: why" for the first that is wrong.
    bool load(const QString& text, QString& error);
    bool loadFile(const QString& path, QString& error);
    void play();
    // Carries out one command now, beside whatever the script is doing; `wait` and `waitfor`
    // have no meaning here. False, and why, when the line is wrong or could not be done.
    bool runNow(const QString& line, QString& error);
    bool finished() const { return m_next >= m_lines.size() && !m_waiting; }

Q_SIGNALS:
    void done();
    // A line that could not be carried out (an unknown user, say); the script goes on.
    void problem(const QString& text);

private:
    struct Line {
        int number = 0;
        QStringList words; // the command and its fixed arguments
        QString rest;      // the text after them
    };

    static bool parse(const QString& text, int lineNumber, Line& line, QString& error);
    void step();
    void run(const Line& line);
    bool conditionHolds(const Line& line) const;
    void report(const Line& line, const QString& text);
    ChatUser* target(const Line& line, const QString& name);
    QList<ChatUser*> targets(const QString& name) const;

    ChatHub& m_hub;
    QList<Line> m_lines;
    qsizetype m_next = 0;
    bool m_waiting = false;
    QTimer m_timer;
    std::map<QString, std::unique_ptr<Resident>> m_users; // scripted users by lower-case name
    QString* m_problem = nullptr;                         // where runNow collects what went wrong
};

} // namespace sandbox
