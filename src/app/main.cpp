#include "app/HeadlessConsole.h"
#include "session/StartupSequence.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <unistd.h>

namespace {

struct Options {
    bool headless = false;
    QString home;
};

Options parseOptions(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Corvantide, a chat bot for Battle.net"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption headless(QStringLiteral("headless"),
                                      QStringLiteral("Run without a window; chat goes to the "
                                                     "terminal, typed lines are sent."));
    const QCommandLineOption home(QStringLiteral("home"),
                                  QStringLiteral("Keep every file of this run under DIR."),
                                  QStringLiteral("DIR"));
    parser.addOption(headless);
    parser.addOption(home);
    parser.process(app);
    return {parser.isSet(headless), parser.value(home)};
}

int runHeadless(QCoreApplication& app) {
    HeadlessConsole console(stdout, isatty(STDOUT_FILENO) != 0);
    QObject::connect(&console, &HeadlessConsole::endOfInput, &app, &QCoreApplication::quit);
    StartupSequence startup;
    if (!startup.run()) {
        console.flush();
        return 1;
    }
    console.startReading();
    const int code = app.exec();
    console.flush();
    return code;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Corvantide"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANTIDE_VERSION));
    const Options options = parseOptions(app);
    return runHeadless(app);
}
