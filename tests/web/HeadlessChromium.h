#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

class QWebSocket;

// Debian's chromium without a screen, driven over the DevTools protocol on
// its WebSocket: open a page and run JavaScript in it.
class HeadlessChromium {
public:
    HeadlessChromium();
    ~HeadlessChromium();
    static QString binary();
    // False with the reason when the browser or its page did not come up.
    bool start(QString* error);
    bool navigate(const QString& url);
    // The value of a JavaScript expression in the page; undefined on failure.
    QJsonValue evaluate(const QString& expression);
    // Polls the expression until it is true or `ms` pass.
    bool waitUntil(const QString& expression, int ms = 15000);

private:
    QJsonObject call(const QString& method, const QJsonObject& params = {});

    QTemporaryDir m_profile;
    QProcess m_process;
    std::unique_ptr<QWebSocket> m_socket;
    int m_nextId = 1;
    QList<QJsonObject> m_replies;
};
