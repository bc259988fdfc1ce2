#include "app/HeadlessConsole.h"
#include "app/TerminalSession.h"
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "control/ControlClient.h"
#include "control/ControlServer.h"
#include "control/TailClient.h"
#include "control/TerminalVerbs.h"
#include "desktop/DesktopIntegration.h"
#include "desktop/SplashWindow.h"
#include "desktop/WebSite.h"
#include "gui/IconPainter.h"
#include "gui/frmBot.h"
#include "media/SongWrapper.h"
#include "platform/TerminationSignals.h"
#include "presentation/ChatWriter.h"
#include "session/ShutdownSequence.h"
#include "session/SlotTable.h"
#include "session/StartupSequence.h"
#include "shell/DesktopShell.h"
#include "social/ClanPacket.h"
#include "web/WebFront.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QTextStream>
#include <QTimer>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace {

struct Options {
    bool headless = false;
    bool noInput = false;
    bool connect = false;
    int webPort = 0;
    QString home;
    QString importReg;
    QStringList exportReg; // key, file
};

Options parseOptions(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Corvantide, a chat bot for Battle.net\n\n") +
                                     TerminalVerbs::Help());
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption headless(QStringLiteral("headless"),
                                      QStringLiteral("Run without a window; chat goes to the "
                                                     "terminal, typed lines are sent."));
    const QCommandLineOption home(QStringLiteral("home"),
                                  QStringLiteral("Keep every file of this run under DIR."),
                                  QStringLiteral("DIR"));
    const QCommandLineOption noInput(QStringLiteral("no-input"),
                                     QStringLiteral("With --headless: do not read the terminal; "
                                                    "run until SIGTERM or QUIT (for a "
                                                    "service)."));
    const QCommandLineOption connect(QStringLiteral("connect"),
                                     QStringLiteral("Connect every profile loaded at start."));
    const QCommandLineOption importReg(QStringLiteral("import-reg"),
                                       QStringLiteral("Import a REGEDIT4 file into the settings "
                                                      "and exit."),
                                       QStringLiteral("FILE"));
    const QCommandLineOption exportReg(QStringLiteral("export-reg"),
                                       QStringLiteral("Export the settings below KEY to FILE "
                                                      "and exit (--export-reg KEY FILE)."),
                                       QStringLiteral("KEY FILE"));
    const QCommandLineOption web(QStringLiteral("web"),
                                 QStringLiteral("Serve the web page on PORT of the loopback "
                                                "address (or of WebAddress) for this run."),
                                 QStringLiteral("PORT"));
    parser.addOptions({headless, noInput, home, connect, importReg, exportReg, web});
    parser.process(app);
    // The file may follow the key as a plain word, or come as a second
    // --export-reg as it did before.
    QStringList exportArgs = parser.values(exportReg);
    if (exportArgs.size() == 1) exportArgs += parser.positionalArguments().mid(0, 1);
    return {parser.isSet(headless) || parser.isSet(noInput), parser.isSet(noInput),
            parser.isSet(connect), parser.value(web).toInt(), parser.value(home),
            parser.value(importReg), exportArgs};
}

// `corvantide [--home DIR] VERB ...`: the words from the first terminal verb
// on, with --home taken out wherever it stands. Empty when there is no verb.
QStringList verbWords(const QStringList& arguments, QString& home) {
    QStringList words;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& word = arguments[i];
        if (word == u"--home" && i + 1 < arguments.size()) {
            home = arguments[++i];
        } else if (word.startsWith(QStringLiteral("--home="))) {
            home = word.mid(7);
        } else if (!words.isEmpty() || TerminalVerbs::IsVerb(word)) {
            words.append(word);
        } else {
            return {};
        }
    }
    return words;
}

// The bot that runs the verb has its own working folder: file names go as
// absolute paths.
QStringList withAbsoluteFiles(QStringList words) {
    const qsizetype file = words.value(0) == u"import" ? 1 : words.value(0) == u"export" ? 2 : -1;
    if (file > 0 && file < words.size()) words[file] = QDir::current().absoluteFilePath(words[file]);
    return words;
}

// A running bot on the home takes the verb, so that it applies the change as
// its own forms would; with none, this process opens the store itself.
int runVerb(const QStringList& words) {
    VerbResult result;
    const QStringList request = withAbsoluteFiles(words);
    QString whyNoBot;
    if (!ControlClient::SendToRunningBot(request, result, &whyNoBot)) {
        RegistryWrapper& store = RegistryWrapper::instance();
        if (!store.movedAsideNotice().isEmpty())
            std::fprintf(stderr, "%s\n", qPrintable(store.movedAsideNotice()));
        if (!store.isOpen()) {
            std::fprintf(
                stderr, "%s No Corvantide running on this home answered%s.\n",
                qPrintable(store.openError()),
                qPrintable(whyNoBot.isEmpty() ? QString() : QStringLiteral(": ") + whyNoBot));
            return 1;
        }
        store.setCreateKeyIfDoesntExists(true);
        result = TerminalVerbs::Run(request);
    }
    std::fputs(result.out.toLocal8Bit().constData(), stdout);
    std::fputs(result.err.toLocal8Bit().constData(), stderr);
    return result.status;
}

// The running bot listens for the terminal's verbs; without the channel it
// still runs, and says why the verbs cannot reach it.
void openControlChannel(ControlServer& server) {
    QObject::connect(&server, &ControlServer::notice,
                     [](const QString& line) { WriteChat(0, Status::Error, line); });
    QString error;
    if (!server.listen(&error))
        WriteChat(0, Status::Error,
                  QStringLiteral("Settings commands from the terminal cannot reach this bot: ") +
                      error + u'.');
}

// The settings file options are the import and export verbs.
int runSettingsCommand(const Options& options) {
    if (!options.importReg.isEmpty()) return runVerb({QStringLiteral("import"), options.importReg});
    if (options.exportReg.size() != 2) {
        std::fprintf(stderr, "--export-reg takes a key and a file: --export-reg KEY FILE\n");
        return 2;
    }
    return runVerb({QStringLiteral("export"), options.exportReg[0], options.exportReg[1]});
}

// Without a window the first loaded profile is the one typing goes to.
void showFirstLoadedProfile() {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).IsLoaded) {
            table.SelectBot(i);
            return;
        }
    }
}

void connectLoadedProfiles() {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i)
        table.ConnectBot(i);
}

// A store that was no settings store went aside for a fresh one: the first
// line of the console says where, before the user misses the old settings.
// Later, a setting the disk did not take is a red line too.
void reportStoreTrouble() {
    const QString notice = RegistryWrapper::instance().movedAsideNotice();
    if (!notice.isEmpty()) WriteChat(0, Status::Error, notice);
    QObject::connect(
        &SettingsWrapper::instance(), &SettingsWrapper::settingNotSaved,
        [](const QString& property, const QString& cause) {
            WriteChat(0, Status::Error,
                      QStringLiteral("Could not save the setting %1: %2.").arg(property, cause));
        });
}

// Input ended (a pipe closed, Ctrl+D): the lines typed before it still go out
// through the send queues of the profiles online, for at most half a minute,
// and the bot quits once the queues stayed empty for a turn of the timer, so
// that the last line leaves the socket too.
void quitOnceQueuesAreSent(QCoreApplication& app) {
    auto* timer = new QTimer(&app);
    auto deadline = std::make_shared<QDeadlineTimer>(30000);
    auto emptyTurns = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, &app, [&app, deadline, emptyTurns] {
        SlotTable& table = SlotTable::instance();
        bool queued = false;
        for (int i = 1; i <= table.highestIndex(); ++i)
            queued = queued || (Bots(i).IsLoaded && Bots(i).Online() && !Bots(i).Queue.isEmpty());
        *emptyTurns = queued ? 0 : *emptyTurns + 1;
        if (*emptyTurns >= 2 || deadline->hasExpired()) app.quit();
    });
    timer->start(100);
}

int runHeadless(QCoreApplication& app, const Options& options) {
    const bool outputIsTerminal = isatty(STDOUT_FILENO) != 0;
    HeadlessConsole console(stdout, outputIsTerminal);
    QObject::connect(&console, &HeadlessConsole::endOfInput, &app,
                     [&app] { quitOnceQueuesAreSent(app); });
    QObject::connect(&DesktopShell::instance(), &DesktopShell::quitRequested, &app,
                     &QCoreApplication::quit, Qt::QueuedConnection);
    QObject::connect(&SlotTable::instance(), &SlotTable::messageBox,
                     [](const QString& title, const QString& text) {
                         std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(text));
                     });
    reportStoreTrouble();
    WebSite site;
    StartupSequence startup;
    if (!startup.run()) {
        console.flush();
        return 1;
    }
    showFirstLoadedProfile();
    TerminalSession session(console, site);
    ControlServer control;
    openControlChannel(control);
    WebFront web;
    web.start(options.webPort);
    if (options.connect) QTimer::singleShot(0, &app, connectLoadedProfiles);
    console.setLineHandler([&session](const QString& line) { session.typed(line); });
    if (!options.noInput) {
        // Editing needs a terminal on both ends; a pipe is read as it comes.
        const bool edited = outputIsTerminal && isatty(STDIN_FILENO) != 0;
        console.startReading(edited, GetSettingsPath() + QStringLiteral("TerminalHistory"),
                             [&session](const QString& before, const QString& word) {
                                 return session.candidates(before, word);
                             });
    }
    const int code = app.exec();
    ShutdownSequence().run();
    console.flush();
    return code;
}

int runWindow(QCoreApplication& app, const Options& options) {
    QApplication::setStyle(QStringLiteral("Fusion"));
    // The window exists before the start-up so that it sees every slot and
    // every line from the first.
    frmBot window;
    // Hidden in the tray the window is no longer open, yet the program runs
    // on: it ends when the window is closed for good.
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(&window, &frmBot::closedForGood, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    WebSite site;
    QObject::connect(&site, &WebSite::usersOnlineChanged, window.lblUsers(), &QLabel::setText);
    reportStoreTrouble();
    SplashWindow splash(IconPainter::icon(IconPainter::Program));
    splash.show();
    splash.Status(QStringLiteral("Loading Corvantide ..."));
    StartupSequence startup;
    QObject::connect(&startup, &StartupSequence::stepStarted, &splash, &SplashWindow::Status);
    if (!startup.run()) return 1;
    ControlServer control;
    openControlChannel(control);
    WebFront web;
    web.start(options.webPort);
    if (options.connect) QTimer::singleShot(0, &app, connectLoadedProfiles);
    window.desktop()->ShowWithFade();
    splash.hide();
    const int code = app.exec();
    ShutdownSequence shutdown;
    QObject::connect(&shutdown, &ShutdownSequence::stepStarted, &splash, &SplashWindow::Status);
    splash.ClearStatus();
    splash.show();
    shutdown.run();
    return code;
}

// A run without a window: headless, a settings file command, or only the
// help or version text.
bool runsWithoutWindow(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const char* option : {"--headless", "--no-input", "--import-reg", "--export-reg",
                                   "--help", "-h", "--version", "-v", "--help-all"}) {
            const size_t length = std::strlen(option);
            if (std::strncmp(argv[i], option, length) == 0 &&
                (argv[i][length] == '\0' || argv[i][length] == '='))
                return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QString verbHome;
    const QStringList verb = verbWords(arguments, verbHome);
    if (!verb.isEmpty()) {
        QCoreApplication app(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("Corvantide"));
        if (!verbHome.isEmpty()) SetHomeFolder(verbHome);
        if (verb[0] == u"tail") return FollowRunningBot(verb);
        return runVerb(verb);
    }
    const bool windowless = runsWithoutWindow(argc, argv);
    std::unique_ptr<QCoreApplication> application;
    if (windowless)
        application = std::make_unique<QCoreApplication>(argc, argv);
    else
        application = std::make_unique<QApplication>(argc, argv);
    QCoreApplication& app = *application;
    QCoreApplication::setApplicationName(QStringLiteral("Corvantide"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANTIDE_VERSION));
    QuitOnTermination(app);
    ClanPacket::install();
    const Options options = parseOptions(app);
    if (!options.home.isEmpty()) SetHomeFolder(options.home);
    // The player follows the settings of this home.
    SongWrapper::install();
    if (!options.importReg.isEmpty() || !options.exportReg.isEmpty())
        return runSettingsCommand(options);
    if (!RegistryWrapper::instance().isOpen()) {
        // A run without its store would go on defaults and lose every
        // change: a lock, a read-only file and a damaged one each say so.
        const QString text = RegistryWrapper::instance().openError();
        std::fprintf(stderr, "%s\n", qPrintable(text));
        if (!windowless) QMessageBox::critical(nullptr, QStringLiteral("Corvantide"), text);
        return 1;
    }
    return options.headless ? runHeadless(app, options) : runWindow(app, options);
}
