#pragma once

#include "web/WebListener.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>
#include <vector>

class PageFeed;
class QHttpServer;
class WebPage;

// The bot in a browser: one page and its WebSocket, served by the running
// bot when the setting WebPort (or --web PORT) names a port. It listens on
// WebAddress, the loopback address unless the user set another. A page sees
// nothing and steers nothing until its first message carries the token.
class WebFront : public QObject {
    Q_OBJECT
public:
    static constexpr int kMostPages = 16;

    explicit WebFront(QObject* parent = nullptr);
    ~WebFront() override;

    // Listens when a port is set: `port` from the command line, else the
    // setting. Writes what happened to the console; false when it could not.
    // A change of the settings later (from the control panel) moves the page
    // to what they say, and a port of 0 closes it.
    bool start(int port = 0);
    quint16 port() const { return m_port; }
    int pageCount() const { return int(m_pages.size()); }
    const std::vector<WebPage*>& pages() const { return m_pages; }
    WebListener& listener() { return *m_listener; }

private:
    void open();
    void close();
    void settingChanged(const QString& property);
    void addRoutes();
    void startFeed();
    void acceptPages();
    void onMessage(WebPage* page, const QString& message);
    void greet(WebPage* page, const QString& message);
    void onClosed(WebPage* page);
    void reportWrongToken(const QHostAddress& from);

    std::unique_ptr<QHttpServer> m_http;
    // Owned by the HTTP server once bound to it, by the front before.
    QPointer<WebListener> m_listener;
    PageFeed* m_feed = nullptr;
    std::vector<WebPage*> m_pages;
    quint16 m_port = 0;
    int m_portGiven = 0; // from the command line, 0 when the setting rules
    qint64 m_wrongTokens = 0;
    qint64 m_lastWrongTokenLine = -1;
    QElapsedTimer m_clock;
};
