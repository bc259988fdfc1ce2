#include "gui/ControlPanelPages.h"

#include "gui/ControlPanelAliases.h"
#include "gui/ControlPanelAutomated.h"
#include "gui/ControlPanelBlocks.h"
#include "gui/ControlPanelChat.h"
#include "gui/ControlPanelDatabases.h"
#include "gui/ControlPanelFilters.h"
#include "gui/ControlPanelFonts.h"
#include "gui/ControlPanelGroups.h"
#include "gui/ControlPanelHashing.h"
#include "gui/ControlPanelHeading.h"
#include "gui/ControlPanelIcons.h"
#include "gui/ControlPanelMacros.h"
#include "gui/ControlPanelMedia.h"
#include "gui/ControlPanelPlugins.h"
#include "gui/ControlPanelTooltips.h"
#include "gui/ControlPanelWeb.h"
#include "gui/ControlPanelWindow.h"

namespace {

ControlPanelPage* heading(const char* title, QWidget* parent) {
    return new ControlPanelHeading(
        QLatin1String(title), QStringLiteral("Please select one of the subcategories"), parent);
}

} // namespace

ControlPanelPage* CreateControlPanelPage(int row, QWidget* parent) {
    switch (row) {
    case 0:
        return heading("Connection Options", parent);
    case 1:
        return new ControlPanelAutomated(parent);
    case 2:
        return new ControlPanelHashing(parent);
    case 3:
        return heading("Display Options", parent);
    case 4:
        return new ControlPanelChat(parent);
    case 5:
        return new ControlPanelFonts(parent);
    case 6:
        return new ControlPanelIcons(parent);
    case 7:
        return new ControlPanelMedia(parent);
    case 8:
        return new ControlPanelTooltips(parent);
    case 9:
        return new ControlPanelWindow(parent);
    case 10:
        return heading("Management", parent);
    case 11:
        return new ControlPanelAliases(parent);
    case 12:
        return new ControlPanelBlocks(parent);
    case 13:
        return new ControlPanelDatabases(parent);
    case 14:
        return new ControlPanelFilters(parent);
    case 15:
        return new ControlPanelGroups(parent);
    case 16:
        return new ControlPanelMacros(parent);
    case 17:
        return new ControlPanelPlugins(parent);
    case 18:
        return new ControlPanelWeb(parent);
    default:
        return nullptr;
    }
}
