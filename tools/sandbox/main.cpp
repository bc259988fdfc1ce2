#include "platform/TerminationSignals.h"
#include "sandbox/ControlChannel.h"
#include "sandbox/EventScript.h"
#include "sandbox/ResidentCrowd.h"
#include "sandbox/SandboxContext.h"
#include "sandbox/SandboxServer.h"

#include <QCoreApplication>
#include <cstdio>

using namespace sandbox;

namespace {

int fail(const QString& text) {
    std::fprintf(stderr, "corvantide-sandbox: %s\n", qPrintable(text));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QuitOnTermination(app);
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
