#include "commands/AliasesAndGroups.h"

#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "platform/Cp1252.h"
#include "platform/ListModel.h"
#include "platform/LowerCase.h"
#include "presentation/UserColors.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <QHash>

namespace {

RegistryWrapper& store() {
    return RegistryWrapper::instance();
}

// One of the two trees, "Aliases" or "Groups", whose entries hold members.
class Tree {
public:
    explicit Tree(const char* name) : m_name(QLatin1String(name)) {}

    QString key(const QString& entry = {}, const QString& member = {}) const {
        QString path = SettingsWrapper::RootKey() + m_name + u'\\';
        if (!entry.isEmpty()) path += entry + u'\\';
        return path + member;
    }
    // The same key below HKCU, as DeleteKey takes it.
    QString subKey(const QString& entry, const QString& member = {}) const {
        return key(entry, member).mid(QStringLiteral("HKCU\\").size());
    }

    int list(QStringList& names) const { return listKey(key(), names); }
    int members(const QString& entry, QStringList& names) const {
        return listKey(key(entry), names);
    }

    // Every line on screen asks for its user's alias and group, so the tree's
    // members are indexed once and the index holds until the store's next
    // write.
    QString find(const QString& name) const {
        if (name.isEmpty() || name.contains(u'\\')) return {};
        RegistryWrapper& now = store();
        if (m_index.store != &now || m_index.writes != now.writeCount()) rebuildIndex(now);
        return m_index.firstEntry.value(lookupForm(name));
    }

    QString isMember(const QString& entry, const QString& name) const {
        // Keys compare without regard to case, as members do; a name with a
        // backslash can be no member, since a member's name holds none.
        if (entry.isEmpty() || name.isEmpty() || name.contains(u'\\')) return {};
        return store().KeyExists(key(entry, name)) ? entry : QString();
    }

    // An empty entry would stand for the tree itself.
    void create(const QString& entry, const QStringList& members) const {
        if (entry.isEmpty()) return;
        store().CreateKey(key(entry));
        for (const QString& member : members) {
            const QString plain = ConvertUsername(member, false, -1);
            if (!plain.isEmpty()) store().CreateKey(key(entry, plain));
        }
    }

    // Members first: a key that still has subkeys is not deleted.
    bool remove(const QString& entry) const {
        QStringList names;
        if (entry.isEmpty() || members(entry, names) < 0) return false;
        for (const QString& member : names) {
            if (!member.isEmpty()) store().DeleteKey(subKey(entry, member));
        }
        store().DeleteKey(subKey(entry));
        return true;
    }

    // The members without any spelling of the name; false when the members
    // could not be listed.
    bool withoutMember(const QString& entry, const QString& name, QStringList& out) const {
        QStringList names;
        if (members(entry, names) < 0) return false;
        out.clear();
        for (const QString& member : names) {
            if (member.toLower() != name.toLower()) out.append(member);
        }
        return true;
    }

private:
    // As the store compares key names: in the code page's letters, without
    // regard to case.
    static QString lookupForm(const QString& name) {
        bool ascii = true;
        for (QChar c : name)
            ascii = ascii && c.unicode() < 0x80;
        return LowerCase(ascii ? name : cp1252::decode(cp1252::encode(name)));
    }

    void rebuildIndex(RegistryWrapper& now) const {
        m_index.firstEntry.clear();
        QStringList entries;
        list(entries);
        for (const QString& entry : entries) {
            QStringList names;
            if (entry.isEmpty() || members(entry, names) < 0) continue;
            for (const QString& member : names) {
                // The first entry in the store's order that has the member.
                const QString form = lookupForm(member);
                if (!member.isEmpty() && !m_index.firstEntry.contains(form))
                    m_index.firstEntry.insert(form, entry);
            }
        }
        m_index.store = &now;
        m_index.writes = now.writeCount();
    }

    static int listKey(const QString& path, QStringList& names) {
        if (store().EnumKeys(path, names) < 0) return -1;
        return int(names.size()) - 1;
    }

    QString m_name;
    struct Index {
        const RegistryWrapper* store = nullptr;
        quint64 writes = 0;
        QHash<QString, QString> firstEntry; // member's lookup form -> entry
    };
    mutable Index m_index;
};

const Tree& aliases() {
    static const Tree tree("Aliases");
    return tree;
}

const Tree& groups() {
    static const Tree tree("Groups");
    return tree;
}

} // namespace

int ListAliases(QStringList& Names) {
    return aliases().list(Names);
}

int ListAliasMembers(const QString& Alias, QStringList& Names) {
    return aliases().members(Alias, Names);
}

QString FindAlias(const QString& Name) {
    return aliases().find(Name);
}

QString IsAliasMember(const QString& Alias, const QString& Name) {
    return aliases().isMember(Alias, Name);
}

void CreateAlias(const QString& Alias, const QStringList& Members) {
    aliases().create(Alias, Members);
}

bool DeleteAlias(const QString& Alias) {
    return aliases().remove(Alias);
}

void RewriteAlias(const QString& Alias, const QStringList& Members) {
    DeleteAlias(Alias);
    CreateAlias(Alias, Members);
    RecolorUserLists();
}

void AddAliasMember(const QString& Alias, const QString& Name) {
    QStringList members;
    if (ListAliasMembers(Alias, members) < 0) return;
    members.append(Name);
    RewriteAlias(Alias, members);
}

void RemoveAliasMember(const QString& Alias, const QString& Name) {
    QStringList members;
    if (aliases().withoutMember(Alias, Name, members)) RewriteAlias(Alias, members);
}

int ListGroups(QStringList& Names) {
    return groups().list(Names);
}

int ListGroupMembers(const QString& Group, QStringList& Names) {
    return groups().members(Group, Names);
}

QString FindGroup(const QString& Name) {
    return groups().find(Name);
}

QString IsGroupMember(const QString& Group, const QString& Name) {
    return groups().isMember(Group, Name);
}

void CreateGroup(const QString& Group, const QStringList& Members, qint32 Color,
                 const QString& Prefix) {
    if (Group.isEmpty()) return;
    groups().create(Group, Members);
    store().WriteSTRING(groups().key(Group), QStringLiteral("Prefix"), Prefix);
    store().WriteDWORD(groups().key(Group), QStringLiteral("Color"), Color);
}

bool DeleteGroup(const QString& Group) {
    return groups().remove(Group);
}

void RewriteGroup(const QString& Group, const QStringList& Members, qint32 Color,
                  const QString& Prefix) {
    DeleteGroup(Group);
    CreateGroup(Group, Members, Color, Prefix);
    RecolorUserLists();
}

void AddGroupMember(const QString& Group, const QString& Name) {
    QStringList members;
    if (ListGroupMembers(Group, members) < 0) return;
    members.append(Name);
    RewriteGroup(Group, members, GetGroupColor(Group), GetGroupPrefix(Group));
}

void RemoveGroupMember(const QString& Group, const QString& Name) {
    QStringList members;
    if (groups().withoutMember(Group, Name, members))
        RewriteGroup(Group, members, GetGroupColor(Group), GetGroupPrefix(Group));
}

namespace {

// A group's colour and prefix as the store holds them, asked for with every
// line of a member; kept until the store's next write.
struct GroupLooks {
    qint32 color = -1;
    QString prefix;
};

const GroupLooks& looksOf(const QString& Group) {
    static const RegistryWrapper* seenStore = nullptr;
    static quint64 seenWrites = 0;
    static QHash<QString, GroupLooks> known;
    RegistryWrapper& now = store();
    if (seenStore != &now || seenWrites != now.writeCount()) {
        known.clear();
        seenStore = &now;
        seenWrites = now.writeCount();
    }
    const auto found = known.constFind(Group);
    if (found != known.cend()) return *found;
    GroupLooks looks;
    const QString key = groups().key(Group);
    if (now.ValueExists(key, QStringLiteral("Color")))
        looks.color = now.ReadDWORD(key, QStringLiteral("Color"), -1);
    looks.prefix = now.ValueExists(key, QStringLiteral("Prefix"))
                       ? now.ReadSTRING(key, QStringLiteral("Prefix"))
                       : Group;
    return *known.insert(Group, looks);
}

} // namespace

qint32 GetGroupColor(const QString& Group) {
    return looksOf(Group).color;
}

QString GetGroupPrefix(const QString& Group) {
    return looksOf(Group).prefix;
}

void RefreshAliasesAndGroups(int Index) {
    SlotTable& table = SlotTable::instance();
    if (Index < 0 || Index > table.highestIndex()) return;
    RecolorUserList(Index);

    ListModel& list = table.users(Index);
    const bool hideChars = SettingsWrapper::instance().HideChars();
    for (int i = 1; i <= list.count(); ++i) {
        ListItem item = list.item(i);
        const QString plain = ConvertUsername(item.tag, false, -1);
        const QString alias = FindAlias(plain.toLower());
        const QString text = !alias.isEmpty() ? alias : hideChars ? plain : item.tag;
        if (item.text != text) {
            item.text = text;
            list.setItem(i, item);
        }
    }
    Q_EMIT AliasEvents::instance().menusChanged();
}

AliasEvents& AliasEvents::instance() {
    static AliasEvents events;
    return events;
}
