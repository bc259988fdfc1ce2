#include "control/ConfigVerbs.h"

#include "commands/AliasesAndGroups.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsCatalogue.h"
#include "config/SettingsWrapper.h"
#include "control/TypedValue.h"
#include "session/SlotTable.h"

#include <algorithm>

namespace {

using Entry = SettingsCatalogue::Entry;
using Type = SettingsCatalogue::Type;

// A key as typed, with the full path the store takes and the part below the
// program's root that the catalogue knows keys by.
struct Key {
    QString full;
    QString belowRoot;
};

Key resolve(QString typed) {
    typed.replace(u'/', u'\\');
    while (typed.endsWith(u'\\'))
        typed.chop(1);
    for (const QString& longRoot : {QStringLiteral("HKEY_CURRENT_USER\\")}) {
        if (typed.startsWith(longRoot, Qt::CaseInsensitive))
            typed = QStringLiteral("HKCU\\") + typed.mid(longRoot.size());
    }
    QString root = SettingsWrapper::RootKey();
    root.chop(1);
    if (!typed.startsWith(QStringLiteral("HK"), Qt::CaseInsensitive))
        return {typed.isEmpty() ? root : root + u'\\' + typed, typed};
    const bool belowProgram = typed.startsWith(root + u'\\', Qt::CaseInsensitive);
    return {typed, belowProgram ? typed.mid(root.size() + 1) : QString()};
}

VerbResult noSuchKey(const Key& key) {
    return VerbResult::refused(QStringLiteral("No key ") + Quoted(key.full) +
                               QStringLiteral(" in the settings."));
}

// Whatever runs on the settings tree sees a change at its next read; what the
// window draws from a value, or the alias and group menus, is told now.
void announce(const Key& key, const QString& valueName) {
    const QString first = key.belowRoot.section(u'\\', 0, 0).toLower();
    if (first == u"settings") {
        const Entry* entry = SettingsCatalogue::Find(key.belowRoot, valueName);
        const QString property = entry && !entry->property.isEmpty() ? entry->property
                                 : entry                             ? entry->valueName
                                                                     : valueName;
        Q_EMIT SettingsWrapper::instance().settingChanged(property);
    } else if (first == u"aliases" || first == u"groups") {
        SlotTable& table = SlotTable::instance();
        for (int i = 1; i <= table.highestIndex(); ++i)
            RefreshAliasesAndGroups(i);
        Q_EMIT AliasEvents::instance().menusChanged();
    }
}

// The values the catalogue knows for a key: every program-wide setting, or
// every value of a profile; none for other keys.
const QList<Entry>* catalogueOf(const Key& key) {
    const QStringList parts = key.belowRoot.split(u'\\', Qt::SkipEmptyParts);
    const QString first = parts.value(0).toLower();
    if (parts.size() == 1 && first == u"settings") return &SettingsCatalogue::ProgramValues();
    if (parts.size() == 2 && first == u"profiles") return &SettingsCatalogue::ProfileValues();
    return nullptr;
}

// The stored values as the program uses them, and the catalogue's defaults
// for the ones never written.
QStringList valueLines(const Key& key) {
    QStringList names;
    QStringList values;
    RegistryWrapper::instance().EnumValues(key.full, names, values);
    QStringList lines;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (!names[i].isEmpty() || !values[i].isEmpty())
            lines.append(names[i] + QStringLiteral(" = ") +
                         TypedValue::Shown(key.belowRoot, names[i], values[i]));
    }
    if (const QList<Entry>* catalogue = catalogueOf(key)) {
        for (const Entry& entry : *catalogue) {
            const bool stored = std::any_of(names.begin(), names.end(), [&](const QString& name) {
                return name.compare(entry.valueName, Qt::CaseInsensitive) == 0;
            });
            if (!stored)
                lines.append(entry.valueName + QStringLiteral(" = ") + entry.defaultText +
                             QStringLiteral("   (default)"));
        }
    }
    return lines;
}

VerbResult get(const Key& key, const QString& valueName) {
    RegistryWrapper& store = RegistryWrapper::instance();
    const Entry* entry =
        valueName.isNull() ? nullptr : SettingsCatalogue::Find(key.belowRoot, valueName);
    // A home never started has no Settings key yet: its values are the defaults.
    const bool known = store.KeyExists(key.full) ||
                       key.belowRoot.compare(QStringLiteral("Settings"), Qt::CaseInsensitive) == 0;
    if (!known && !entry) return noSuchKey(key);
    if (!valueName.isNull()) {
        QString text;
        if (TypedValue::Read(key.full, valueName, text))
            return VerbResult::done(TypedValue::Shown(key.belowRoot, valueName, text));
        if (entry) return VerbResult::done(entry->defaultText);
        return VerbResult::refused(QStringLiteral("No value ") + Quoted(valueName) +
                                   QStringLiteral(" in ") + Quoted(key.full) + u'.');
    }
    const QStringList lines = valueLines(key);
    if (lines.isEmpty()) return VerbResult::done(Quoted(key.full) + QStringLiteral(" holds no values."));
    return VerbResult::done(lines.join(u'\n'));
}

// A value the catalogue does not know keeps the type it is stored with; a new
// one needs its type said.
bool typeOf(const Key& key, const QString& valueName, QString& option, Type& type) {
    if (option == u"--number" || option == u"--dword") {
        type = Type::Dword;
        return true;
    }
    if (option == u"--text" || option == u"--string") {
        type = Type::String;
        return true;
    }
    if (const Entry* entry = SettingsCatalogue::Find(key.belowRoot, valueName)) {
        type = entry->type;
        return true;
    }
    RegistryWrapper& store = RegistryWrapper::instance();
    QStringList names;
    QStringList values;
    store.EnumValues(key.full, names, values, RegistryWrapper::TypeDword);
    for (const QString& name : names) {
        if (!name.isEmpty() && name.compare(valueName, Qt::CaseInsensitive) == 0) {
            type = Type::Dword;
            return true;
        }
    }
    if (store.ValueExists(key.full, valueName)) {
        type = Type::String;
        return true;
    }
    return false;
}

VerbResult set(const Key& key, const QString& valueName, const QString& text, QString option) {
    Type type = Type::String;
    if (!typeOf(key, valueName, option, type))
        return VerbResult::refused(QStringLiteral("The settings do not know the value ") +
                                   Quoted(valueName) + QStringLiteral(" of ") + Quoted(key.full) +
                                   QStringLiteral("; say its type: config set KEY NAME VALUE "
                                                  "--text or --number"));
    // Start with the session is an autostart entry of the desktop, not a value.
    if (key.belowRoot.compare(QStringLiteral("Settings"), Qt::CaseInsensitive) == 0 &&
        valueName.compare(QStringLiteral("WindowsStartup"), Qt::CaseInsensitive) == 0) {
        qint32 on = 0;
        if (!TypedValue::Parse(Type::Boolean, text, on))
            return TypedValue::WrongType(valueName, Type::Boolean, text);
        SettingsWrapper::instance().setWindowsStartup(on != 0);
        return VerbResult::done(on ? QStringLiteral("Corvantide now starts with the session.")
                                   : QStringLiteral("Corvantide no longer starts with the session."));
    }
    if (VerbResult refused = TypedValue::Limit(key.belowRoot, valueName, type, text);
        refused.status != 0)
        return refused;
    VerbResult written = TypedValue::Write(key.full, valueName, type, text);
    if (written.status != 0) return written;
    announce(key, valueName);
    const QString said =
        QStringLiteral("Set ") + valueName + QStringLiteral(" of ") + Quoted(key.full);
    if (TypedValue::IsSecret(key.belowRoot, valueName)) return VerbResult::done(said + u'.');
    QString stored;
    TypedValue::Read(key.full, valueName, stored);
    return VerbResult::done(said + QStringLiteral(" to ") + Quoted(stored) + u'.');
}

VerbResult list(const Key& key) {
    RegistryWrapper& store = RegistryWrapper::instance();
    if (!store.KeyExists(key.full)) return noSuchKey(key);
    QStringList names;
    store.EnumKeys(key.full, names);
    names.removeAll(QString());
    // The passwords the profile form offers are the names of this list.
    if (key.belowRoot.compare(QStringLiteral("Passwords"), Qt::CaseInsensitive) == 0)
        return VerbResult::done(Quoted(key.full) + QStringLiteral(" holds ") +
                                QString::number(names.size()) +
                                QStringLiteral(" passwords; they are not shown."));
    if (names.isEmpty())
        return VerbResult::done(Quoted(key.full) + QStringLiteral(" has no subkeys."));
    return VerbResult::done(names.join(u'\n'));
}

VerbResult remove(const Key& key, const QString& valueName) {
    RegistryWrapper& store = RegistryWrapper::instance();
    if (!store.KeyExists(key.full)) return noSuchKey(key);
    if (!valueName.isNull()) {
        if (!store.ValueExists(key.full, valueName))
            return VerbResult::refused(QStringLiteral("No value ") + Quoted(valueName) +
                                       QStringLiteral(" in ") + Quoted(key.full) + u'.');
        if (store.KillValue(key.full, valueName) == 0 || store.ValueExists(key.full, valueName))
            return VerbResult::refused(QStringLiteral("Could not delete ") + Quoted(valueName) +
                                       QStringLiteral(": the settings store refused the write."));
        announce(key, valueName);
        return VerbResult::done(QStringLiteral("Deleted ") + valueName + QStringLiteral(" of ") +
                                Quoted(key.full) + u'.');
    }
    if (key.belowRoot.isEmpty())
        return VerbResult::refused(QStringLiteral("The settings' root key is not deleted."));
    if (store.HaveSubkey(key.full))
        return VerbResult::refused(Quoted(key.full) +
                                   QStringLiteral(" has subkeys; delete them first."));
    store.KillKey(key.full);
    if (store.KeyExists(key.full))
        return VerbResult::refused(QStringLiteral("Could not delete ") + Quoted(key.full) +
                                   QStringLiteral(": the settings store refused the write."));
    announce(key, QString());
    return VerbResult::done(QStringLiteral("Deleted ") + Quoted(key.full) + u'.');
}

} // namespace

QString ConfigVerbsHelp() {
    return QStringLiteral(
        "  config get KEY [VALUE]          print the values of a key, or one value\n"
        "  config set KEY NAME VALUE       store a value, typed as the program reads it\n"
        "                                  (add --text or --number for a value it does not "
        "know)\n"
        "  config list KEY                 the subkeys of a key\n"
        "  config delete KEY [VALUE]       remove a value, or a key without subkeys\n"
        "      KEY is below the program's root, e.g. Settings, Databases\\Main\\alice,\n"
        "      Groups\\Buddies, or a full HKCU\\... path\n");
}

VerbResult RunConfigVerb(const QStringList& args) {
    const QString verb = args.value(0).toLower();
    const qsizetype n = args.size();
    if (verb == u"get" && (n == 2 || n == 3)) return get(resolve(args[1]), args.value(2, QString()));
    if (verb == u"set" && (n == 4 || n == 5))
        return set(resolve(args[1]), args[2], args[3], args.value(4).toLower());
    if (verb == u"list" && n == 2) return list(resolve(args[1]));
    if (verb == u"delete" && (n == 2 || n == 3))
        return remove(resolve(args[1]), args.value(2, QString()));
    return VerbResult::usage(QStringLiteral("config get|set|list|delete ...\n") +
                             ConfigVerbsHelp());
}
