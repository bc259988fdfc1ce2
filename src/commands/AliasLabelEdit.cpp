#include "commands/AliasLabelEdit.h"

#include "commands/AliasGroupEditor.h"
#include "commands/AliasesAndGroups.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "presentation/ChatWriter.h"
#include "statistics/UserNames.h"

namespace {

constexpr quint32 kEditColor = 0xFFFF;

QString quoted(const QString& text) {
    return u'"' + text + u'"';
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool aliasExists(const QString& alias) {
    return !alias.isEmpty() && !alias.contains(u'\\') &&
           RegistryWrapper::instance().KeyExists(SettingsWrapper::RootKey() +
                                                 QStringLiteral("Aliases\\") + alias);
}

// Unlike the menu's "None", the label edit leaves no empty alias behind.
void leave(const QString& alias, const QString& plain) {
    if (!aliasExists(alias)) return;
    RemoveAliasMember(alias, plain);
    QStringList members;
    if (ListAliasMembers(alias, members) == 0 && members.value(0).isEmpty()) DeleteAlias(alias);
}

} // namespace

void AliasLabelEdit::begin(int slot, const QString& tag, const QString& text) {
    m_active = true;
    m_slot = slot;
    m_user = tag;
    m_newAlias = text == tag || FindAlias(ConvertUsername(tag, false, -1)).isEmpty();
    m_oldAlias = m_newAlias ? QString() : text;
    if (m_newAlias)
        say(QStringLiteral("Type something to create an alias for this user."));
    else
        say(QStringLiteral("Attempting to rename alias ") + quoted(tag) + QStringLiteral(" to ") +
            quoted(text) + u'.');
}

bool AliasLabelEdit::finish(const QString& text) {
    if (!m_active) return false;
    m_active = false;
    if (text.contains(u'\\')) {
        WriteChat(m_slot, Status::Error, QStringLiteral("Name cannot contain backslashes."));
        return false;
    }
    const QString plain = ConvertUsername(m_user, false, -1);
    if (text.isEmpty()) {
        // Nothing typed: nothing to make.
    } else if (m_newAlias) {
        if (!sameName(text, m_user)) join(text);
    } else if (!aliasExists(m_oldAlias)) {
        join(text);
    } else if (text != m_oldAlias) {
        leave(m_oldAlias, plain);
        if (sameName(text, m_user) || sameName(text, plain))
            leave(text, plain);
        else
            join(text);
    }
    AliasGroupEditor::RefreshEveryList();
    return true;
}

void AliasLabelEdit::join(const QString& alias) {
    const bool existed = aliasExists(alias);
    if (existed)
        AddAliasMember(alias, m_user);
    else
        CreateAlias(alias, {m_user});
    if (existed && m_newAlias)
        say(QStringLiteral("Added ") + quoted(m_user) + QStringLiteral(" to alias called ") +
            quoted(alias) + u'.');
    else
        say(QStringLiteral("Created alias ") + quoted(alias) + QStringLiteral(" for ") +
            quoted(m_user) + u'.');
}

void AliasLabelEdit::say(const QString& line) const {
    WriteChat(m_slot, {{kEditColor, line}});
}
