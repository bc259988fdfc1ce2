#include "common/SandboxProcess.h"

#include "chat/BotElement.h"
#include "session/SlotTable.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpServer>

int SandboxProcess::loadProfile(const QString& account, const QString& channel) const {
    const int i = SlotTable::instance().LoadProfile(account);
    ConfigWrapper& c = Bots(i).Config;
    c.setAccount(account);
    c.setPassword(QStringLiteral("secret"));
    c.setClient(QStringLiteral("STAR"));
    c.setVerbyte(QStringLiteral("d3"));
    c.setCdkey(QStringLiteral("7178075237576"));
    c.setServer(bncsServer());
    c.setServerBNLS(bnlsServer());
    c.setChannel(channel);
    return i;
}

SandboxProcess::~SandboxProcess() {
    if (m_process.state() == QProcess::NotRunning) return;
    // Asked first, so it removes its temporary files; forced if it hangs.
    m_process.terminate();
    if (m_process.waitForFinished(3000)) return;
    m_process.kill();
    m_process.waitForFinished(3000);
}

QString SandboxProcess::binary() {
    return QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide-sandbox");
}

bool SandboxProcess::start(const QStringList& options) {
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(binary(), QStringList{QStringLiteral("--bncs-port"), QStringLiteral("0"),
                                          QStringLiteral("--bnls-port"), QStringLiteral("0")} +
                                  options);
    if (!m_process.waitForStarted(5000)) return false;
    while (bncsPort == 0 || bnlsPort == 0) {
        if (!m_process.canReadLine() && !m_process.waitForReadyRead(5000)) return false;
        while (m_process.canReadLine()) {
            const QString line = QString::fromUtf8(m_process.readLine()).trimmed();
            const int port = line.section(u':', -1).toInt();
            if (line.startsWith(QLatin1String("BNCS listening")))
                bncsPort = port;
            else if (line.startsWith(QLatin1String("BNLS listening")))
                bnlsPort = port;
        }
    }
    return true;
}

QStringList SandboxProcess::control(const QStringList& lines, int ms) {
    m_process.write((lines.join(u'\n') + u'\n').toUtf8());
    QStringList answers;
    waitFor(
        [&] {
            while (m_process.canReadLine())
                answers << QString::fromUtf8(m_process.readLine()).trimmed();
            return answers.size() >= lines.size();
        },
        ms);
    return answers;
}

int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

bool waitFor(const std::function<bool()>& done, int ms) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > ms) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}
