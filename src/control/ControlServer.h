#pragma once

#include <QObject>
#include <QString>

class QLocalServer;
class QLocalSocket;

// The running bot's ear for the terminal verbs: a local socket named after
// the home's settings folder, open to this user only. A request is one line
// of JSON {"args": [...]}, the answer one line {"status", "out", "err"}; the
// verb runs inside the bot, on its store and its slots, exactly as its own
// forms would make the change.
class ControlServer : public QObject {
    Q_OBJECT
public:
    explicit ControlServer(QObject* parent = nullptr);
    ~ControlServer() override;

    // The socket's name for the settings folder in use.
    static QString ChannelName();
    // False with the reason when the socket could not be opened.
    bool listen(QString* error);

private:
    void accept();
    void answer(QLocalSocket* socket);

    QLocalServer* m_server;
};
