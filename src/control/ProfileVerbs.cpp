#include "control/ProfileVerbs.h"

#include "config/ConfigWrapper.h"
#include "config/ProfileSheet.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsCatalogue.h"
#include "control/TypedValue.h"
#include "session/LogonNeeds.h"
#include "session/ProductVersions.h"
#include "session/ProfileLifecycle.h"

#include <algorithm>

namespace {

using Entry = SettingsCatalogue::Entry;

QStringList productCodes() {
    QStringList codes;
    for (int i = 0; i < ProfileSheet::ProductNames().size(); ++i)
        codes.append(ProfileSheet::productCode(i));
    return codes;
}

VerbResult noSuchProfile(const QString& name) {
    return VerbResult::refused(QStringLiteral("No profile named ") + Quoted(name) +
                               QStringLiteral("; `corvantide profile list` shows them."));
}

QString keyOf(const QString& stored) {
    return ProfileLifecycle::ProfilesKey() + stored;
}

// The stored value, or the default the bot reads when there is none.
QString valueOrDefault(const QString& stored, const Entry& entry, bool* isDefault = nullptr) {
    QString text;
    const bool found = TypedValue::Read(keyOf(stored), entry.valueName, text);
    if (isDefault) *isDefault = !found;
    return found ? text : entry.defaultText;
}

VerbResult list() {
    const QStringList names = ProfileLifecycle::ListProfiles();
    if (names.isEmpty())
        return VerbResult::done(
            QStringLiteral("No profiles yet; make one with: corvantide profile new NAME"));
    return VerbResult::done(names.join(u'\n'));
}

// An empty version byte is the product's current one, worked out at connect.
QString verbyteNote(const QString& stored, const QString& text) {
    if (!text.trimmed().isEmpty()) return {};
    ConfigWrapper config;
    config.Profile = stored;
    const quint32 current = ProductVersions::Current(config.Client());
    if (current == 0) return {};
    return QStringLiteral("   (the current byte of ") + config.Client().toUpper() +
           QStringLiteral(", ") + ProductVersions::Text(current) + u')';
}

VerbResult show(const QString& name) {
    const QString stored = ProfileLifecycle::FindProfile(name);
    if (stored.isEmpty()) return noSuchProfile(name);
    QStringList lines{QStringLiteral("Profile ") + Quoted(stored)};
    const QString below = QStringLiteral("Profiles\\") + stored;
    for (const Entry& entry : SettingsCatalogue::ProfileValues()) {
        bool isDefault = false;
        const QString text = valueOrDefault(stored, entry, &isDefault);
        QString note = isDefault ? QStringLiteral("   (default)") : QString();
        if (entry.valueName == u"Verbyte") note += verbyteNote(stored, text);
        lines.append(QStringLiteral("  ") + entry.valueName + QStringLiteral(" = ") +
                     TypedValue::Shown(below, entry.valueName, text) + note);
    }
    ConfigWrapper config;
    config.Profile = stored;
    for (const LogonNeeds::Need& need : LogonNeeds::Missing(config))
        lines.append(QStringLiteral("Cannot connect as set: ") + need.text + u'.');
    return VerbResult::done(lines.join(u'\n'));
}

// A new profile holds what the profile form shows for one: the gateway, a
// BNLS server, StarCraft, the trigger, owner and idle message; its version
// byte stays empty, so it follows its product.
VerbResult create(const QString& name) {
    const ProfileOutcome outcome = ProfileLifecycle::CreateProfile(name);
    if (outcome.existed)
        return VerbResult::refused(QStringLiteral("A profile named ") +
                                   Quoted(ProfileLifecycle::FindProfile(name)) +
                                   QStringLiteral(" already exists."));
    if (!outcome.ok) return VerbResult::refused(outcome.warning);
    std::optional<ProfileSheet> sheet = ProfileSheet::read(name);
    if (!sheet || !sheet->write(name))
        return VerbResult::refused(QStringLiteral("Created profile ") + Quoted(name) +
                                   QStringLiteral(", but its first values were not saved: ") +
                                   RegistryWrapper::instance().lastError());
    return VerbResult::done(QStringLiteral("Created profile ") + Quoted(name) +
                            QStringLiteral("; give it values with: corvantide profile set ") +
                            name + QStringLiteral(" KEY VALUE"));
}

VerbResult copyOrRename(const QString& verb, const QString& from, const QString& to) {
    const QString stored = ProfileLifecycle::FindProfile(from);
    if (stored.isEmpty()) return noSuchProfile(from);
    const bool clone = verb == u"clone";
    const ProfileOutcome outcome = clone ? ProfileLifecycle::CloneProfile(stored, to)
                                         : ProfileLifecycle::RenameProfile(stored, to);
    if (!outcome.ok) return VerbResult::refused(outcome.warning);
    return VerbResult::done((clone ? QStringLiteral("Cloned profile ")
                                   : QStringLiteral("Renamed profile ")) +
                            Quoted(stored) + QStringLiteral(" to ") + Quoted(to) + u'.');
}

VerbResult remove(const QString& name) {
    const QString stored = ProfileLifecycle::FindProfile(name);
    if (stored.isEmpty()) return noSuchProfile(name);
    const ProfileOutcome outcome = ProfileLifecycle::DeleteProfile(stored);
    if (!outcome.ok) return VerbResult::refused(outcome.warning);
    return VerbResult::done(QStringLiteral("Deleted profile ") + Quoted(stored) + u'.');
}

VerbResult unknownValue(const QString& valueName) {
    QStringList names;
    for (const Entry& entry : SettingsCatalogue::ProfileValues())
        names.append(entry.valueName);
    return VerbResult::refused(QStringLiteral("A profile has no value ") + Quoted(valueName) +
                               QStringLiteral("; it has: ") + names.join(QStringLiteral(", ")) +
                               u'.');
}

// The product is chosen by its code; the product list's index and the
// product's name are understood too.
bool productCode(const QString& typed, QString& code) {
    const QString text = typed.trimmed();
    const QStringList names = ProfileSheet::ProductNames();
    for (int i = 0; i < names.size(); ++i) {
        if (ProfileSheet::productCode(i).compare(text, Qt::CaseInsensitive) == 0 ||
            names[i].compare(text, Qt::CaseInsensitive) == 0 || text == QString::number(i)) {
            code = ProfileSheet::productCode(i);
            return true;
        }
    }
    return false;
}

VerbResult set(const QString& name, const QString& valueName, QString text) {
    const QString stored = ProfileLifecycle::FindProfile(name);
    if (stored.isEmpty()) return noSuchProfile(name);
    const Entry* entry = SettingsCatalogue::FindProfileValue(valueName);
    if (!entry) return unknownValue(valueName);
    if (entry->valueName == u"Product" && !productCode(text, text))
        return VerbResult::refused(QStringLiteral("Product takes one of ") +
                                   productCodes().join(QStringLiteral(", ")) +
                                   QStringLiteral(", not ") + Quoted(text) + u'.');
    const QString below = QStringLiteral("Profiles\\") + stored;
    if (VerbResult refused = TypedValue::Limit(below, entry->valueName, entry->type, text);
        refused.status != 0)
        return refused;
    VerbResult written = TypedValue::Write(keyOf(stored), entry->valueName, entry->type, text);
    if (written.status != 0) return written;
    const QString said =
        QStringLiteral("Set ") + entry->valueName + QStringLiteral(" of ") + Quoted(stored);
    if (TypedValue::IsSecret(below, entry->valueName)) return VerbResult::done(said + u'.');
    return VerbResult::done(said + QStringLiteral(" to ") + Quoted(valueOrDefault(stored, *entry)) +
                            u'.');
}

VerbResult get(const QString& name, const QString& valueName) {
    const QString stored = ProfileLifecycle::FindProfile(name);
    if (stored.isEmpty()) return noSuchProfile(name);
    const Entry* entry = SettingsCatalogue::FindProfileValue(valueName);
    if (!entry) return unknownValue(valueName);
    return VerbResult::done(TypedValue::Shown(QStringLiteral("Profiles\\") + stored,
                                              entry->valueName, valueOrDefault(stored, *entry)));
}

} // namespace

QString ProfileVerbsHelp() {
    return QStringLiteral(
        "  profile list                    the stored profiles\n"
        "  profile show NAME               every value of a profile\n"
        "  profile new NAME                make a profile with the profile form's defaults\n"
        "  profile clone FROM TO           copy a profile under a new name\n"
        "  profile rename FROM TO          rename a profile (a loaded one follows)\n"
        "  profile delete NAME             remove a profile (a loaded one is unloaded)\n"
        "  profile set NAME KEY VALUE      store a value (e.g. Account, Product, Trigger)\n"
        "  profile get NAME KEY            print a value\n");
}

VerbResult RunProfileVerb(const QStringList& args) {
    const QString verb = args.value(0).toLower();
    const qsizetype n = args.size();
    // The names, not the values: a value may hold what it likes.
    const qsizetype names = (verb == u"clone" || verb == u"rename") ? 3 : 2;
    for (qsizetype i = 1; i < std::min(n, names); ++i) {
        if (ProfileLifecycle::HasControlCharacter(args[i]))
            return VerbResult::refused(ProfileLifecycle::ControlCharacterRefusal());
    }
    if (verb == u"list" && n == 1) return list();
    if (verb == u"show" && n == 2) return show(args[1]);
    if (verb == u"new" && n == 2) return create(args[1]);
    if ((verb == u"clone" || verb == u"rename") && n == 3)
        return copyOrRename(verb, args[1], args[2]);
    if (verb == u"delete" && n == 2) return remove(args[1]);
    if (verb == u"set" && n == 4) return set(args[1], args[2], args[3]);
    if (verb == u"get" && n == 3) return get(args[1], args[2]);
    return VerbResult::usage(QStringLiteral("profile list|show|new|clone|rename|delete|set|get "
                                            "...\n") +
                             ProfileVerbsHelp());
}
