#include "platform/SocketControl.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

// A peer that takes nothing until the bot has sent everything: the kernel's
// window fills, so the send goes partly straight out and partly through Qt's
// queue, and later sends must queue behind what is already waiting. A peer
// that vanishes without a reset is given up by the kernel once what the bot
// sent stays unacknowledged for the limit.
TEST(SocketControlTest, SendsPastAFullWindowArriveWholeAndInOrder) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    SocketControl control;
    control.Connect(QStringLiteral("127.0.0.1"), server.serverPort());
    ASSERT_TRUE(QTest::qWaitFor([&] { return control.State() == SocketControl::Connected; }));
    unsigned limit = 0;
    socklen_t size = sizeof limit;
    ASSERT_EQ(::getsockopt(int(control.SocketDescriptor()), IPPROTO_TCP, TCP_USER_TIMEOUT, &limit,
                           &size),
              0);
    EXPECT_EQ(limit, SocketControl::kUnacknowledgedLimitMs);
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.hasPendingConnections(); }));
    QTcpSocket* peer = server.nextPendingConnection();

    QByteArray expected;
    for (int i = 0; i < 2000; ++i) {
        const QByteArray frame = QByteArray::number(i).rightJustified(8, '0').repeated(1024);
        control.SendData(frame);
        expected += frame;
    }
    QByteArray received;
    QElapsedTimer clock;
    clock.start();
    while (received.size() < expected.size() && clock.elapsed() < 20000) {
        QTest::qWait(5);
        received += peer->readAll();
    }
    ASSERT_EQ(received.size(), expected.size());
    EXPECT_TRUE(received == expected) << "bytes arrived out of order";
}

} // namespace
