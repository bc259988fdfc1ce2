#include "commands/AliasesAndGroups.h"

#include "commands/AliasGroupEditor.h"
#include "commands/AliasLabelEdit.h"
#include "common/ChatFixture.h"
#include "platform/ListModel.h"

#include <QSignalSpy>

class AliasesAndGroupsTest : public ChatFixture {
protected:
    static QStringList members(const QString& alias) {
        QStringList names;
        ListAliasMembers(alias, names);
        return names;
    }
    // Runs one edit of a name in the user list and gives the lines it wrote.
    QString edit(const QString& tag, const QString& shown, const QString& typed,
                 bool* accepted = nullptr) {
        const int slot = SlotTable::instance().LoadProfile(QStringLiteral("editor"));
        rtbChat(slot).clear();
        AliasLabelEdit label;
        label.begin(slot, tag, shown);
        const bool ok = label.finish(typed);
        if (accepted) *accepted = ok;
        return rtbChat(slot).text();
    }
};

TEST_F(AliasesAndGroupsTest, MembersArePlainNamesFoundInAnyCase) {
    CreateAlias("Robert", {"Hero*Bob", "rob"});
    EXPECT_EQ(members("Robert"), (QStringList{"Bob", "rob"}));
    EXPECT_EQ(FindAlias("bob"), QStringLiteral("Robert"));
    EXPECT_EQ(FindAlias("BOB"), QStringLiteral("Robert"));
    EXPECT_EQ(IsAliasMember("Robert", "ROB"), QStringLiteral("Robert"));
    EXPECT_EQ(IsAliasMember("Robert", "nobody"), QString());
    EXPECT_EQ(FindAlias("Robert"), QString()) << "an alias is no member of itself";

    CreateAlias("Another", {"bob"});
    QStringList names;
    ListAliases(names);
    EXPECT_EQ(FindAlias("bob"), names.first()) << "the store's first answers";

    // Adding and removing members rewrites the alias.
    CreateAlias("Team", {"ann"});
    AddAliasMember("Team", "Hero*Bob");
    AddAliasMember("Team", "bob"); // made once all the same
    EXPECT_EQ(members("Team"), (QStringList{"ann", "Bob"}));
    RemoveAliasMember("Team", "ANN");
    RemoveAliasMember("Team", "bob");
    EXPECT_EQ(members("Team"), QStringList{QString()}) << "the alias stays without members";
    ListAliases(names);
    EXPECT_EQ(names, (QStringList{"Another", "Robert", "Team"}));

    EXPECT_TRUE(DeleteAlias("Team"));
    AddAliasMember("Team", "carl");
    EXPECT_EQ(ListAliasMembers("Team", names), -1) << "a deleted alias is not made again";
    EXPECT_FALSE(DeleteAlias("Team"));
}

TEST_F(AliasesAndGroupsTest, GroupsKeepColourAndPrefixThroughRewrites) {
    CreateGroup("Ops", {"ann"}, 0x00FF00, "[op]");
    AddGroupMember("Ops", "bob");
    EXPECT_EQ(GetGroupColor("Ops"), 0x00FF00);
    EXPECT_EQ(GetGroupPrefix("Ops"), QStringLiteral("[op]"));
    EXPECT_EQ(FindGroup("BOB"), QStringLiteral("Ops"));
    RemoveGroupMember("Ops", "ann");
    EXPECT_EQ(FindGroup("ann"), QString());
    EXPECT_EQ(GetGroupColor("Ops"), 0x00FF00);

    // A group made by hand, without values: no colour, its name as prefix.
    RegistryWrapper::instance().CreateKey(SettingsWrapper::RootKey() + "Groups\\Bare\\carl");
    EXPECT_EQ(GetGroupColor("Bare"), -1);
    EXPECT_EQ(GetGroupPrefix("Bare"), QStringLiteral("Bare"));
    EXPECT_EQ(IsGroupMember("Bare", "Carl"), QStringLiteral("Bare"));
    EXPECT_TRUE(DeleteGroup("Ops"));
    EXPECT_FALSE(RegistryWrapper::instance().KeyExists(SettingsWrapper::RootKey() + "Groups\\Ops"));
}

TEST_F(AliasesAndGroupsTest, RefreshRenamesAndRecoloursTheList) {
    const int slot = SlotTable::instance().LoadProfile("refresh");
    CurrentTheme().userList.Normal = 1;
    for (const char* name : {"Hero*bob", "ann", "gone"}) {
        ListItem item = ListItem::withText(name);
        item.tag = name;
        lvUsers(slot).add(item);
    }
    Bots(slot).userAdd("Hero*bob", 0, 0, {}, 0);
    Bots(slot).userAdd("ann", 0, 0, {}, 0);
    CreateAlias("Robert", {"bob"});
    CreateGroup("Blue", {"ann"}, 0xFF0000, "");
    QSignalSpy menus(&AliasEvents::instance(), &AliasEvents::menusChanged);

    RefreshAliasesAndGroups(slot);
    EXPECT_EQ(lvUsers(slot).item(1).text, QStringLiteral("Robert"));
    EXPECT_EQ(lvUsers(slot).item(1).color, 1u);
    EXPECT_EQ(lvUsers(slot).item(2).color, 0xFF0000u);
    EXPECT_EQ(lvUsers(slot).item(3).color, 0xFFFFFFu) << "a user who left keeps the colour";
    EXPECT_EQ(menus.count(), 1);

    RemoveAliasMember("Robert", "bob");
    SettingsWrapper::instance().setHideChars(false);
    RefreshAliasesAndGroups(slot);
    EXPECT_EQ(lvUsers(slot).item(1).text, QStringLiteral("Hero*bob"));
    SettingsWrapper::instance().setHideChars(true);
    RefreshAliasesAndGroups(slot);
    EXPECT_EQ(lvUsers(slot).item(1).text, QStringLiteral("bob"));
}

TEST_F(AliasesAndGroupsTest, TypingANameMakesOrJoinsAnAlias) {
    bool accepted = false;
    EXPECT_TRUE(edit("bob", "bob", "bob", &accepted)
                    .contains("Type something to create an alias for this user."));
    EXPECT_TRUE(accepted);
    EXPECT_TRUE(AliasGroupEditor::AliasNames().isEmpty()) << "own name typed back: nothing";

    EXPECT_TRUE(edit("bob", "bob", "Friends").contains("Created alias \"Friends\" for \"bob\"."));
    EXPECT_TRUE(
        edit("carl", "carl", "Friends").contains("Added \"carl\" to alias called \"Friends\"."));
    EXPECT_EQ(AliasGroupEditor::AliasMembers("Friends"), (QStringList{"bob", "carl"}));
    // (A name refused for its backslash is the user list's test.)

    // Renaming moves the user; the own name typed back leaves the alias.
    EXPECT_TRUE(edit("bob", "Friends", "Pals")
                    .contains("Attempting to rename alias \"bob\" to \"Friends\"."));
    EXPECT_EQ(FindAlias("bob"), QStringLiteral("Pals"));
    EXPECT_EQ(AliasGroupEditor::AliasMembers("Friends"), QStringList{"carl"});

    // The same alias typed again changes nothing.
    edit("carl", "Friends", "Friends");
    EXPECT_EQ(FindAlias("carl"), QStringLiteral("Friends"));

    // The own name typed back takes the user out; the emptied alias goes.
    const QString lines = edit("carl", "Friends", "carl");
    EXPECT_FALSE(lines.contains("Created alias"));
    EXPECT_TRUE(FindAlias("carl").isEmpty());
    EXPECT_EQ(AliasGroupEditor::AliasNames(), QStringList{"Pals"});
}
