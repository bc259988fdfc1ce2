#include "session/LogonNeeds.h"

#include "config/ConfigWrapper.h"
#include "config/SettingsWrapper.h"
#include "session/ConnectionWrapper.h"

#include <QFileInfo>

namespace LogonNeeds {
namespace {

QString profileWord(const QString& profile) {
    return profile.contains(u' ') ? u'"' + profile + u'"' : profile;
}

QString setProfile(const ConfigWrapper& config, const char* setting, const char* example) {
    return QStringLiteral("corvantide profile set ") + profileWord(config.Profile) + u' ' +
           QLatin1String(setting) + u' ' + QLatin1String(example);
}

Need empty(const ConfigWrapper& config, const char* setting, const char* example,
           const QString& why = {}) {
    return {QStringLiteral("[BNET] "), QLatin1String(setting) + QStringLiteral(" is empty") + why +
                                           QStringLiteral("; set it with: ") +
                                           setProfile(config, setting, example)};
}

// The game's folder for a version check on this machine.
void localHashing(const QString& client, QList<Need>& needs) {
    const QString upper = client.toUpper();
    const bool diablo = IsDiabloRealm(upper);
    const QString setting = diablo ? QStringLiteral("Path") + upper : QStringLiteral("PathWAR3");
    const QString game = diablo ? QStringLiteral("Diablo II") : QStringLiteral("WarCraft III");
    const QString command = QStringLiteral("; set it with: corvantide config set Settings ") +
                            setting + QStringLiteral(" FOLDER");
    const SettingsWrapper& settings = SettingsWrapper::instance();
    const QString folder = upper == u"D2DV"   ? settings.PathD2DV()
                           : upper == u"D2XP" ? settings.PathD2XP()
                                              : settings.PathWAR3();
    if (folder.trimmed().isEmpty()) {
        needs.append({QStringLiteral("[BncsUtil] "), QStringLiteral("LocalHashing is on and ") +
                                                         setting + QStringLiteral(" (the ") + game +
                                                         QStringLiteral(" folder) is empty") +
                                                         command});
        return;
    }
    const HashFiles files = GetHashFiles(upper);
    for (const QString& file : {files.file1, files.file2, files.file3}) {
        if (QFileInfo(file).isFile()) continue;
        needs.append({QStringLiteral("[BncsUtil] "), setting + QStringLiteral(" (") + folder +
                                                         QStringLiteral(") holds no ") +
                                                         QFileInfo(file).fileName() + command});
        return;
    }
}

} // namespace

QList<Need> Missing(const ConfigWrapper& config) {
    QList<Need> needs;
    const QString client = config.Client().toUpper();
    if (config.Account().isEmpty()) needs.append(empty(config, "Account", "NAME"));
    if (config.Password().isEmpty()) needs.append(empty(config, "Password", "SECRET"));
    if (ProductCode(client) == 0 || client == u"JSTR") {
        needs.append({QStringLiteral("[BNET] "),
                      QStringLiteral("Product is not one of STAR, SEXP, W2BN, D2DV, D2XP, WAR3, "
                                     "W3XP; set it with: ") +
                          setProfile(config, "Product", "STAR")});
        return needs;
    }
    if (config.Cdkey().isEmpty()) needs.append(empty(config, "Cdkey1", "KEY"));
    if (HasTwoKeys(client) && config.Cdkey2().isEmpty())
        needs.append(
            empty(config, "Cdkey2", "KEY",
                  QStringLiteral(" and ") + client + QStringLiteral(" logs on with a second key")));
    if (config.Server().trimmed().isEmpty()) needs.append(empty(config, "Server", "HOST[:PORT]"));
    const bool local = SettingsWrapper::instance().LocalHashing() && CanHashLocally(client);
    if (local) {
        localHashing(client, needs);
    } else if (config.ServerBNLS().trimmed().isEmpty()) {
        const QString why =
            CanHashLocally(client)
                ? QStringLiteral(" and LocalHashing is off: ") + client +
                      QStringLiteral(" takes its version check from a BNLS server, or from the "
                                     "game's folder with LocalHashing on")
                : QStringLiteral(" and ") + client +
                      QStringLiteral(" always takes its version check from a BNLS server");
        needs.append(
            {QStringLiteral("[BNLS] "), QStringLiteral("ServerBNLS is empty") + why +
                                            QStringLiteral("; set it with: ") +
                                            setProfile(config, "ServerBNLS", "HOST[:PORT]")});
    }
    return needs;
}

} // namespace LogonNeeds
