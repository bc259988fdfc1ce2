#include "session/ProfileLifecycle.h"

#include "chat/BotElement.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"

namespace {

ProfileOutcome refused(const QString& warning) {
    return {false, warning, false};
}

ProfileOutcome done() {
    return {true, {}, false};
}

// The parent as RenameKey and CloneKey take it, without the trailing
// backslash.
QString profilesParent() {
    QString parent = ProfileLifecycle::ProfilesKey();
    parent.chop(1);
    return parent;
}

} // namespace

namespace ProfileLifecycle {

QString ProfilesKey() {
    return SettingsWrapper::RootKey() + QStringLiteral("Profiles\\");
}

QStringList ListProfiles() {
    QStringList names;
    RegistryWrapper::instance().EnumKeys(ProfilesKey(), names);
    names.removeAll(QString());
    return names;
}

QString FindProfile(const QString& name) {
    if (name.isEmpty()) return {};
    for (const QString& stored : ListProfiles()) {
        if (stored.compare(name, Qt::CaseInsensitive) == 0) return stored;
    }
    return {};
}

bool HasControlCharacter(const QString& name) {
    for (QChar c : name) {
        const QChar::Category kind = c.category();
        if (kind == QChar::Other_Control || kind == QChar::Separator_Line ||
            kind == QChar::Separator_Paragraph)
            return true;
    }
    return false;
}

QString ControlCharacterRefusal() {
    return QStringLiteral("A profile name cannot contain control characters (tabs, line breaks, "
                          "escapes).");
}

ProfileOutcome CreateProfile(const QString& name) {
    if (name.isEmpty()) return refused(QStringLiteral("You must enter a name for the profile."));
    if (HasControlCharacter(name)) return refused(ControlCharacterRefusal());
    for (QChar c : {u'/', u'\\', u',', u'?'}) {
        if (name.contains(c))
            return refused(QStringLiteral(
                "Invalid characters were used this field cannot contain / \\ , ?"));
    }
    const bool existed = !FindProfile(name).isEmpty();
    if (RegistryWrapper::instance().CreateKey(ProfilesKey() + name) == 0)
        return refused(QStringLiteral("Unable to create profile, perhaps it is already created?"));
    ProfileOutcome outcome = done();
    outcome.existed = existed;
    SlotTable::instance().DisplayProfiles();
    return outcome;
}

ProfileOutcome CloneProfile(const QString& from, const QString& to) {
    if (to.contains(u'\\'))
        return refused(QStringLiteral("Could not clone profile, cannot contain \\ in name!"));
    if (to.isEmpty()) return refused(QStringLiteral("Could not clone the profile, invalid name!"));
    if (HasControlCharacter(to)) return refused(ControlCharacterRefusal());
    if (!RegistryWrapper::instance().CloneKey(profilesParent(), from, to))
        return refused(QStringLiteral("Could not clone the profile, it may already exist!"));
    SlotTable::instance().DisplayProfiles();
    return done();
}

ProfileOutcome RenameProfile(const QString& from, const QString& to) {
    if (to.contains(u'\\'))
        return refused(QStringLiteral("Could not rename profile, cannot contain \\ in name!"));
    if (to.isEmpty()) return refused(QStringLiteral("Could not rename the profile, invalid name!"));
    if (HasControlCharacter(to)) return refused(ControlCharacterRefusal());
    if (!RegistryWrapper::instance().RenameKey(profilesParent(), from, to))
        return refused(QStringLiteral("Could not rename the profile, it may already exist!"));
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        BotElement& bot = table.bot(i);
        if (bot.IsLoaded && bot.Profile().compare(from, Qt::CaseInsensitive) == 0)
            table.renameSlotProfile(i, to);
    }
    table.DisplayProfiles();
    return done();
}

ProfileOutcome DeleteProfile(const QString& name) {
    const QString stored = FindProfile(name);
    // A failed delete is not reported: the list simply still shows the name.
    if (!stored.isEmpty())
        RegistryWrapper::instance().DeleteKey(ProfilesKey().mid(5) + stored);
    SlotTable& table = SlotTable::instance();
    for (int i = table.highestIndex(); i >= 1; --i) {
        BotElement& bot = table.bot(i);
        if (bot.IsLoaded && bot.Profile().compare(name, Qt::CaseInsensitive) == 0)
            table.UnloadProfile(bot.Profile());
    }
    table.DisplayProfiles();
    if (stored.isEmpty() || !FindProfile(name).isEmpty())
        return refused(QStringLiteral("Could not delete the profile ") + name + u'.');
    return done();
}

} // namespace ProfileLifecycle
