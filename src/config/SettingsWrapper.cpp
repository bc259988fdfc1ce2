#include "config/SettingsWrapper.h"

#include "config/FileWrites.h"
#include "config/Folders.h"
#include "config/IniFile.h"
#include "config/RegistryWrapper.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace {

bool isOneOf(qint32 value, std::initializer_list<qint32> allowed) {
    return std::find(allowed.begin(), allowed.end(), value) != allowed.end();
}

// One argument of an Exec line: quoted, with the characters the desktop
// entry format reserves escaped, then escaped again as a string value.
QString execArgument(const QString& argument) {
    QString quoted;
    for (QChar c : argument) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\') quoted += u'\\';
        quoted += c;
    }
    quoted.replace(u'\\', QStringLiteral("\\\\"));
    quoted.replace(u'%', QStringLiteral("%%"));
    return u'"' + quoted + u'"';
}

} // namespace

SettingsWrapper& SettingsWrapper::instance() {
    static SettingsWrapper settings(RegistryWrapper::instance());
    return settings;
}

SettingsWrapper::SettingsWrapper(RegistryWrapper& store, QObject* parent)
    : QObject(parent), store_(store) {}

const QString& SettingsWrapper::RootKey() {
    static const QString key = QStringLiteral("HKCU\\Software\\Corvantide4\\");
    return key;
}

const QString& SettingsWrapper::SettingsKey() {
    static const QString key = RootKey() + QStringLiteral("Settings");
    return key;
}

// United States West and East, Asia, Europe.
const QStringList& SettingsWrapper::Gateways() {
    static const QStringList servers = {
        QStringLiteral("uswest.battle.net"),
        QStringLiteral("useast.battle.net"),
        QStringLiteral("asia.battle.net"),
        QStringLiteral("europe.battle.net"),
    };
    return servers;
}

// Public BNLS servers by name, then the local ones by name and by address
// (the sandbox answers on 127.0.0.1).
const QStringList& SettingsWrapper::BnlsServers() {
    static const QStringList servers = {
        QStringLiteral("jbls.davnit.net"),
        QStringLiteral("bnls.bnetdocs.org"),
        QStringLiteral("hdx.jbls.org"),
        QStringLiteral("jbls.org"),
        QStringLiteral("phix.no-ip.org"),
        QStringLiteral("bnls.mattkv.net"),
        QStringLiteral("pyro.no-ip.biz"),
        QStringLiteral("bnls.valhallalegends.com"),
        QStringLiteral("jbls.codespeak.org"),
        QStringLiteral("bnls.ostrelund.net"),
        QStringLiteral("bnls-us.ostrelund.net"),
        QStringLiteral("bnls-eu.ostrelund.net"),
        QStringLiteral("bnls-asia.ostrelund.net"),
        QStringLiteral("jbls.ostrelund.net"),
        QStringLiteral("localhost"),
        QStringLiteral("127.0.0.1"),
        QStringLiteral("::1"),
    };
    return servers;
}

void SettingsWrapper::RecordBotDir() {
    store_.setCreateKeyIfDoesntExists(true);
    store_.WriteSTRING(RootKey(), QStringLiteral("BotDir"), GetProgramFolder());
}

QStringList SettingsWrapper::SeedStore() {
    struct Seed {
        QString key;
        QString reported;
        const QStringList* entries;
    };
    const Seed seeds[] = {
        {QStringLiteral("Servers1"), QStringLiteral("Servers1"), &Gateways()},
        {QStringLiteral("Servers2"), QStringLiteral("Servers2"), &BnlsServers()},
        {QStringLiteral("Aliases"), QStringLiteral("Aliases"), nullptr},
        {QStringLiteral("Databases"), QStringLiteral("Database"), nullptr},
        {QStringLiteral("Groups"), QStringLiteral("Groups"), nullptr},
        {QStringLiteral("History\\Channels"), QStringLiteral("History\\Channels"), nullptr},
    };
    QStringList created;
    for (const Seed& seed : seeds) {
        const QString path = RootKey() + seed.key;
        if (store_.KeyExists(path)) continue;
        store_.CreateKey(path);
        if (seed.entries) {
            for (const QString& entry : *seed.entries)
                store_.CreateKey(path + u'\\' + entry);
        }
        created.append(seed.reported);
    }
    return created;
}

void SettingsWrapper::WriteBackStartupSettings() {
    setAutoCQ(AutoCQ());
    setMediaPlayer(MediaPlayer());
    setLocked(Locked());
    setHideBanUnban(HideBanUnban());
    setTray(Tray());
    setHideJoinLeave(HideJoinLeave());
    setHideOfflineFriends(HideOfflineFriends());
    setTabbed(Tabbed());
    setEncryption(Encryption());
    setDecryption(Decryption());
    setDecodeUTF8(DecodeUTF8());
    setVoidView(VoidView());
    setWindowsStartup(WindowsStartup());
    setHideChars(HideChars());
    setWhisperPanel(WhisperPanel());
    setIconDisp(IconDisp());
    setTimeStamp(TimeStamp());
    setColorDisp(ColorDisp());
    setHideEmote(HideEmote());
    setHidePresent(HidePresent());
    setFloodMode(FloodMode());
}

void SettingsWrapper::setInstalledFonts(const QStringList& families) {
    fonts_.clear();
    for (const QString& family : families)
        fonts_.insert(family.toLower());
}

bool SettingsWrapper::readBool(const QString& valueName, bool defaultValue) const {
    return readDword(valueName, defaultValue ? 1 : 0) != 0;
}

bool SettingsWrapper::announce(const QString& property, bool saved, const QString& cause) {
    Q_EMIT settingChanged(property);
    if (!saved) Q_EMIT settingNotSaved(property, cause);
    return saved;
}

bool SettingsWrapper::writeBool(const QString& valueName, bool on, const QString& property) {
    const bool saved = store_.WriteDWORD(SettingsKey(), valueName, on ? 1 : 0) != 0;
    return announce(property, saved, store_.lastError());
}

qint32 SettingsWrapper::readDword(const QString& valueName, qint32 defaultValue) const {
    if (dwordsWrites_ != store_.writeCount()) {
        dwords_.clear();
        dwordsWrites_ = store_.writeCount();
    }
    const auto known = dwords_.constFind(valueName);
    if (known != dwords_.cend() && known->defaultValue == defaultValue) return known->value;
    const qint32 value = store_.ReadDWORD(SettingsKey(), valueName, defaultValue);
    dwords_.insert(valueName, {defaultValue, value});
    return value;
}

bool SettingsWrapper::writeDword(const QString& valueName, qint32 value, const QString& property) {
    const bool saved = store_.WriteDWORD(SettingsKey(), valueName, value) != 0;
    return announce(property.isEmpty() ? valueName : property, saved, store_.lastError());
}

QString SettingsWrapper::readString(const QString& valueName, const QString& defaultValue) const {
    return store_.ReadSTRING(SettingsKey(), valueName, defaultValue);
}

bool SettingsWrapper::writeString(const QString& valueName, const QString& value,
                                  const QString& property) {
    const bool saved = store_.WriteSTRING(SettingsKey(), valueName, value) != 0;
    return announce(property.isEmpty() ? valueName : property, saved, store_.lastError());
}

// Read for every chat event: the default is looked up once.
qint32 SettingsWrapper::FloodMode() const {
    static const qint32 fallback =
        SettingsCatalogue::ProgramDefault(QStringLiteral("FloodMode")).toInt();
    const qint32 stored = readDword(QStringLiteral("FloodMode"), fallback);
    return isOneOf(stored, {0, 500, 1000, 2000}) ? stored : fallback;
}

bool SettingsWrapper::setFloodMode(qint32 milliseconds) {
    return writeDword(QStringLiteral("FloodMode"), milliseconds);
}

qint32 SettingsWrapper::Transparency() const {
    static const qint32 fallback =
        SettingsCatalogue::ProgramDefault(QStringLiteral("Transparency")).toInt();
    const qint32 stored = readDword(QStringLiteral("Transparency"), fallback);
    return isOneOf(stored, {20, 40, 60, 80, 100}) ? stored : fallback;
}

bool SettingsWrapper::setTransparency(qint32 percent) {
    return writeDword(QStringLiteral("Transparency"),
                      isOneOf(percent, {20, 40, 60, 80, 100}) ? percent : 100);
}

// Read at the start of each script call: the default is looked up once.
qint32 SettingsWrapper::ScriptMemoryLimit() const {
    static const qint32 fallback =
        SettingsCatalogue::ProgramDefault(QStringLiteral("ScriptMemoryLimit")).toInt();
    return qMax(readDword(QStringLiteral("ScriptMemoryLimit"), fallback), 16);
}

bool SettingsWrapper::setScriptMemoryLimit(qint32 megabytes) {
    return writeDword(QStringLiteral("ScriptMemoryLimit"), megabytes);
}

QString SettingsWrapper::readFont(const QString& valueName, bool* fellBack) const {
    const QString defaultValue = SettingsCatalogue::ProgramDefault(valueName);
    const QString stored = readString(valueName, defaultValue);
    const bool installed = fonts_.isEmpty() || fonts_.contains(stored.toLower());
    if (fellBack) *fellBack = !installed;
    return installed ? stored : defaultValue;
}

QString SettingsWrapper::ChatFont() const {
    bool fellBack = false;
    const QString family = readFont(QStringLiteral("ChatFont"), &fellBack);
    // The views had the missing font: they get the default with its size again.
    if (fellBack) Q_EMIT settingChanged(QStringLiteral("ChatSize"));
    return family;
}

bool SettingsWrapper::setChatFont(const QString& family) {
    return writeString(QStringLiteral("ChatFont"), family);
}

QString SettingsWrapper::TextFont() const {
    return readFont(QStringLiteral("TextFont"));
}

bool SettingsWrapper::setTextFont(const QString& family) {
    return writeString(QStringLiteral("TextFont"), family);
}

QString SettingsWrapper::ListFont() const {
    return readFont(QStringLiteral("ListFont"));
}

bool SettingsWrapper::setListFont(const QString& family) {
    return writeString(QStringLiteral("ListFont"), family);
}

bool SettingsWrapper::WindowsStartup() const {
    QFile file(AutostartFile());
    if (!file.open(QIODevice::ReadOnly)) return false;
    const IniFile entry = IniFile::parse(file.readAll());
    const QString section = QStringLiteral("Desktop Entry");
    const bool hidden = entry.value(section, u"Hidden").value_or(QString()) == u"true";
    return !hidden && !entry.value(section, u"Exec").value_or(QString()).isEmpty();
}

// Off removes the entry rather than hiding it: a fresh start writes back
// every setting it shows, and an entry, even a hidden one, is something the
// user never asked for.
bool SettingsWrapper::setWindowsStartup(bool on) {
    const QString path = AutostartFile();
    QString cause;
    bool saved = true;
    if (on) {
        QStringList arguments;
        for (const QString& argument : ProgramCommand())
            arguments.append(execArgument(argument));
        const QString text = QStringLiteral("[Desktop Entry]\n"
                                            "Type=Application\n"
                                            "Name=Corvantide\n"
                                            "Comment=Battle.net chat bot\n"
                                            "Exec=%1\n"
                                            "Terminal=false\n")
                                 .arg(arguments.join(u' '));
        QDir().mkpath(QFileInfo(path).path());
        saved = ReplaceFile(path, text.toUtf8(), &cause);
    } else if (::unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT) {
        saved = false;
        cause = DescribeWriteError(errno);
    }
    return announce(QStringLiteral("WindowsStartup"), saved, cause);
}
