#include "platform/TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <unistd.h>

void QuitOnTermination(QCoreApplication& app) {
    // A signal handler may only write to a pipe; the event loop reads it.
    static int wake[2] = {-1, -1};
    if (::pipe(wake) != 0) return;
    struct sigaction action = {};
    action.sa_handler = [](int) {
        const char byte = 1;
        [[maybe_unused]] const ssize_t written = ::write(wake[1], &byte, 1);
    };
    sigemptyset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    auto* notifier = new QSocketNotifier(wake[0], QSocketNotifier::Read, &app);
    QObject::connect(notifier, &QSocketNotifier::activated, &app, &QCoreApplication::quit);
}
