#pragma once

#include "web/PageOutbox.h"

#include <QObject>
#include <memory>

class QWebSocket;

// One open page: its WebSocket, whether it offered the token yet, and what
// waits to go to it.
class WebPage : public QObject {
    Q_OBJECT
public:
    // Bigger messages from a page close it: no request comes near.
    static constexpr qint64 kLongestMessage = 64 * 1024;

    WebPage(std::unique_ptr<QWebSocket> socket, QObject* parent);
    ~WebPage() override;

    bool admitted() const { return m_admitted; }
    void admit() { m_admitted = true; }
    QString peer() const;
    const PageOutbox& outbox() const { return m_outbox; }

    void sendLines(const QByteArray& message, int count);
    void sendState(const QString& key, const QByteArray& message);
    // Sends at once, ahead of the queue (answers and the first messages).
    void sendNow(const QByteArray& message);
    // Tells the page why, then closes it.
    void refuse(const QString& text);

Q_SIGNALS:
    void received(WebPage* page, const QString& message);
    void closed(WebPage* page);

private:
    void pump();
    void onDisconnected();

    std::unique_ptr<QWebSocket> m_socket;
    PageOutbox m_outbox;
    bool m_admitted = false;
    bool m_closed = false;
};
