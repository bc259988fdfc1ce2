#pragma once

#include <QObject>
#include <QString>

class QLocalSocket;
class QSocketNotifier;

// The running bot's ear for the terminal verbs: a local socket in a folder
// only this user may enter, named after the home's settings folder. A request
// is one line of JSON {"args": [...]}, the answer one line {"status", "out",
// "err"}; the verb runs inside the bot, on its store and its slots, exactly as
// its own forms would make the change.
//
// Only this user's processes are heard (the kernel tells who connected), at
// most kMostConnections at once, and a connection that has not sent a whole
// request within kIdleMs is dropped. Once a request is in, the code that
// answers decides how long the connection stays.
class ControlServer : public QObject {
    Q_OBJECT
public:
    static constexpr int kMostConnections = 32;
    static constexpr int kIdleMs = 5000;

    explicit ControlServer(QObject* parent = nullptr);
    ~ControlServer() override;

    // False with the reason when the socket could not be opened.
    bool listen(QString* error);

Q_SIGNALS:
    // Something the person running the bot should know: a refused
    // connection, too many at once, no file descriptors left.
    void notice(const QString& line);

private:
    bool openSocket(const QString& path, QString* error);
    void accept();
    void take(int descriptor);
    bool isOwnUser(int descriptor);
    void turnAway(int descriptor);
    void waitForDescriptors(int code);
    void answer(QLocalSocket* socket);

    int m_listening = -1;
    QString m_path;
    QSocketNotifier* m_notifier = nullptr;
    int m_open = 0;
    bool m_full = false;
    bool m_starved = false;
};
