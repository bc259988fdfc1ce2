#include "gui/ControlPanelBlocks.h"

#include "chat/TimedEvents.h"
#include "commands/BlocksAndFilters.h"

ControlPanelBlocks::ControlPanelBlocks(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Blocked Users:"), parent) {
    addNote(QStringLiteral("Nobody on this list is heard: one name a line, and * stands for "
                           "any run of characters."));
    addLines(
        "h3bUsers", QStringLiteral("BlockedUsers.ini"), [] { return entriesOf(BlockedUsers()); },
        [](const QStringList& lines) {
            const bool written = ReplaceBlockedUsersFile(lines);
            TimedEvents::instance().statusTick();
            return written;
        });
}
