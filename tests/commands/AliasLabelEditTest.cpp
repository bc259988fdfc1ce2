#include "commands/AliasLabelEdit.h"

#include "commands/AliasGroupEditor.h"
#include "commands/AliasesAndGroups.h"
#include "common/ChatFixture.h"

class AliasLabelEditTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        slot = SlotTable::instance().LoadProfile(QStringLiteral("editor"));
    }
    // Runs one edit and gives the lines it wrote, one a line.
    QString edit(const QString& tag, const QString& shown, const QString& typed,
                 bool* accepted = nullptr) {
        rtbChat(slot).clear();
        AliasLabelEdit label;
        label.begin(slot, tag, shown);
        const bool ok = label.finish(typed);
        if (accepted) *accepted = ok;
        return rtbChat(slot).text();
    }
    int slot = 0;
};

TEST_F(AliasLabelEditTest, TypingANameMakesOrJoinsAnAlias) {
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
}

TEST_F(AliasLabelEditTest, RenamingMovesTheUserAndTheOwnNameLeavesTheAlias) {
    CreateAlias("Friends", {"bob", "carl"});
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
