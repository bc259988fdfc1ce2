#include "sandbox/SandboxOptions.h"

#include <functional>
#include <map>

namespace sandbox {
namespace {

bool toPort(const QString& text, quint16& port) {
    bool ok = false;
    const uint value = text.toUInt(&ok);
    if (!ok || value > 65535) return false;
    port = quint16(value);
    return true;
}

bool toCount(const QString& text, int& count) {
    bool ok = false;
    count = text.toInt(&ok, 0);
    return ok && count >= 0;
}

bool toFlood(const QString& text, FloodBudget& flood) {
    if (text == QLatin1String("off")) {
        flood.enabled = false;
        return true;
    }
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3) return false;
    FloodBudget parsed;
    if (!toCount(parts[0], parsed.base) || !toCount(parts[1], parsed.perByte) ||
        !toCount(parts[2], parsed.allowance))
        return false;
    flood = parsed;
    return true;
}

bool toAccount(const QString& text, Account& account) {
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() < 2 || parts.size() > 3 || parts[0].isEmpty() || parts[1].isEmpty())
        return false;
    account = {parts[0], parts[1], parts.value(2)};
    return true;
}

} // namespace

QString SandboxOptions::usage() {
    return QStringLiteral(
        "Usage: corvantide-sandbox [options]\n"
        "A local Battle.net-compatible server (BNCS and BNLS) on 127.0.0.1.\n"
        "  --bncs-port N            chat server port (6112; 0 picks a free one)\n"
        "  --bnls-port N            version check server port (9367; 0 picks a free one)\n"
        "  --hash-files A,B,C       the three files the version check hashes\n"
        "  --bnls-fail              BNLS answers every version check with a failure\n"
        "  --version-result CODE    answer every 0x51 version check with CODE (0, 0x100, 0x101)\n"
        "  --current-verbyte        refuse (0x101) a client whose 0x50 names another version\n"
        "                           byte than its product's current one\n"
        "  --keys FILE              product keys to accept besides the built-in ones\n"
        "  --exclusive-keys         refuse a key that another session is using\n"
        "  --accounts FILE          keep accounts and channel bans in FILE\n"
        "  --account NAME:PASS[:MAIL]  create an account at start (repeatable)\n"
        "  --flood BASE,PERBYTE,ALLOWANCE | off   chat flood budget in ms (1200,30,4000)\n"
        "  --residents N            simulated users\n"
        "  --resident-rate R        their actions a second, all together (0.5)\n"
        "  --resident-channel NAME  where they gather (Sandbox)\n"
        "  --channel-limit N        users a channel holds (0: no limit)\n"
        "  --script FILE            play a scripted sequence of server events\n"
        "  --control                take commands on standard input, one answer line each;\n"
        "                           the server ends when the input closes\n"
        "  --trace                  log every frame in and out to standard error\n"
        "  --trace-file FILE        ... or to FILE\n"
        "  --seed N                 fix the residents' choices\n"
        "  --help                   this text\n");
}

std::optional<SandboxOptions> SandboxOptions::parse(const QStringList& arguments, QString& error) {
    SandboxOptions o;
    using Setter = std::function<bool(const QString&)>;
    const std::map<QString, Setter> valued{
        {"--bncs-port", [&](const QString& v) { return toPort(v, o.bncsPort); }},
        {"--bnls-port", [&](const QString& v) { return toPort(v, o.bnlsPort); }},
        {"--hash-files",
         [&](const QString& v) {
             o.hashFiles = v.split(QLatin1Char(','));
             return o.hashFiles.size() == 3 && !o.hashFiles.contains(QString());
         }},
        {"--version-result",
         [&](const QString& v) {
             bool ok = false;
             o.versionResult = v.toUInt(&ok, 0);
             return ok;
         }},
        {"--keys", [&](const QString& v) { return !(o.keysFile = v).isEmpty(); }},
        {"--accounts", [&](const QString& v) { return !(o.accountsFile = v).isEmpty(); }},
        {"--account",
         [&](const QString& v) {
             Account a;
             if (!toAccount(v, a)) return false;
             o.accounts.append(a);
             return true;
         }},
        {"--flood", [&](const QString& v) { return toFlood(v, o.flood); }},
        {"--residents", [&](const QString& v) { return toCount(v, o.residents); }},
        {"--resident-rate",
         [&](const QString& v) {
             bool ok = false;
             o.residentRate = v.toDouble(&ok);
             return ok && o.residentRate > 0 && o.residentRate <= 10000;
         }},
        {"--resident-channel",
         [&](const QString& v) { return !(o.residentChannel = v).isEmpty(); }},
        {"--channel-limit", [&](const QString& v) { return toCount(v, o.channelLimit); }},
        {"--script", [&](const QString& v) { return !(o.scriptFile = v).isEmpty(); }},
        {"--trace-file",
         [&](const QString& v) {
             o.trace = true;
             return !(o.traceFile = v).isEmpty();
         }},
        {"--seed",
         [&](const QString& v) {
             bool ok = false;
             o.seed = v.toUInt(&ok, 0);
             return ok;
         }},
    };
    const std::map<QString, bool*> switches{
        {"--bnls-fail", &o.bnlsFail},
        {"--exclusive-keys", &o.exclusiveKeys},
        {"--current-verbyte", &o.currentVerbyte},
        {"--trace", &o.trace},
        {"--control", &o.control},
        {"--help", &o.help},
        {"-h", &o.help},
    };

    for (int i = 0; i < arguments.size(); ++i) {
        QString name = arguments[i];
        QString value;
        bool inlineValue = false;
        if (const qsizetype eq = name.indexOf(QLatin1Char('=')); eq > 0) {
            value = name.mid(eq + 1);
            name = name.left(eq);
            inlineValue = true;
        }
        if (const auto s = switches.find(name); s != switches.end() && !inlineValue) {
            *s->second = true;
            continue;
        }
        const auto v = valued.find(name);
        if (v == valued.end()) {
            error = QStringLiteral("unknown option %1").arg(arguments[i]);
            return std::nullopt;
        }
        if (!inlineValue) {
            if (i + 1 >= arguments.size()) {
                error = QStringLiteral("%1 needs a value").arg(name);
                return std::nullopt;
            }
            value = arguments[++i];
        }
        if (!v->second(value)) {
            error = QStringLiteral("bad value for %1: %2").arg(name, value);
            return std::nullopt;
        }
    }
    return o;
}

} // namespace sandbox
