#include "sandbox/ControlChannel.h"
#include "sandbox/EventScript.h"
#include "sandbox/ResidentCrowd.h"
#include "sandbox/SandboxContext.h"
#include "sandbox/SandboxServer.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>
#include <unistd.h>

using namespace sandbox;

namespace {

int fail(const QString& text) {
    std::fprintf(stderr, "corvantide-sandbox: %s\n", qPrintable(text));
    return 1;
}

// SIGTERM and SIGINT end the event loop rather than the process, so that
// what the run made (its temporary game files) is cleaned up on the way out.
void quitOnTermination(QCoreApplication& app) {
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

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    quitOnTermination(app);
    QString error;
    const auto options = SandboxOptions::parse(app.arguments().mid(1), error);
    if (!options) {
        std::fputs(qPrintable(SandboxOptions::usage()), stderr);
        fail(error);
        return 2;
    }
    if (options->help) {
        std::fputs(qPrintable(SandboxOptions::usage()), stdout);
        return 0;
    }
    const auto context = SandboxContext::create(*options, error);
    if (!context) return fail(error);

    EventScript script(context->hub);
    if (!options->scriptFile.isEmpty() && !script.loadFile(options->scriptFile, error))
        return fail(error);
    QObject::connect(&script, &EventScript::problem,
                     [](const QString& text) { std::fprintf(stderr, "%s\n", qPrintable(text)); });

    SandboxServer server(*context);
    if (!server.listen(error)) return fail(error);
    // Tests and scripts read the ports from these two lines.
    std::printf("BNCS listening on 127.0.0.1:%u\n", server.bncsPort());
    std::printf("BNLS listening on 127.0.0.1:%u\n", server.bnlsPort());
    std::fflush(stdout);

    ResidentCrowd crowd(context->hub, options->residents, options->residentRate,
                        options->residentChannel, options->seed);
    if (options->residents > 0) crowd.start();
    ControlChannel control(context->hub, script, crowd);
    control.addCommands([&clans = context->clans](const QString& c, const QString& r, QString& a) {
        return clans.control(c, r, a);
    });
    control.addCommands(
        [&profiles = context->profiles](const QString& c, const QString& r, QString& a) {
            return profiles.control(c, r, a);
        });
    if (options->control) {
        QObject::connect(&control, &ControlChannel::closed, &app, &QCoreApplication::quit);
        control.listen(STDIN_FILENO);
    }
    script.play();
    return app.exec();
}
