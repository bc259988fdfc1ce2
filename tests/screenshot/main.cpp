#include "config/Folders.h"

#include <QApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>

namespace {

// Starts a private X server and returns its display name; empty when there
// is no Xvfb on this machine or it doesn't come up.
QString startXvfb(QProcess& server) {
    const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
    if (xvfb.isEmpty()) return {};
    // The server writes its display number to the descriptor it is given;
    // standard output is that descriptor here.
    server.start(xvfb,
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                  QStringLiteral("0"), QStringLiteral("1280x800x24"), QStringLiteral("-nolisten"),
                  QStringLiteral("tcp")});
    if (!server.waitForStarted(5000)) return {};
    QByteArray number;
    while (!number.contains('\n') && server.waitForReadyRead(5000))
        number += server.readAllStandardOutput();
    number = number.trimmed();
    return number.isEmpty() ? QString() : QStringLiteral(":") + QString::fromLatin1(number);
}

bool listingOnly(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--gtest_list_tests") == 0) return true;
    }
    return false;
}

} // namespace

// The screenshot runs the real window on a private X server, so that what is
// captured is what a desktop would show. Without Xvfb the tests run offscreen
// and the capture test says why it skips.
int main(int argc, char** argv) {
    QProcess xvfb;
    QString display;
    if (!listingOnly(argc, argv)) display = startXvfb(xvfb);
    if (display.isEmpty()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else {
        qputenv("DISPLAY", display.toLatin1());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    int result = 0;
    {
        QApplication app(argc, argv);
        QTemporaryDir home;
        SetHomeFolder(home.path());
        ::testing::InitGoogleTest(&argc, argv);
        result = RUN_ALL_TESTS();
    }
    if (xvfb.state() != QProcess::NotRunning) {
        xvfb.terminate();
        xvfb.waitForFinished(5000);
    }
    return result;
}
