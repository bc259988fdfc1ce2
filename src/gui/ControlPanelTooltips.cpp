#include "gui/ControlPanelTooltips.h"

#include "config/SettingsWrapper.h"

#include <QCheckBox>
#include <QVBoxLayout>

using S = SettingsWrapper;

ControlPanelTooltips::ControlPanelTooltips(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Tooltip Settings:"), parent) {
    QCheckBox* master =
        addChecks({
                      {"h2dTrayTip", "Show tooltips when the bot is in the tray (tray-tips)",
                       &S::Balloon, &S::setBalloon},
                  })
            .first();
    auto* companions = new QVBoxLayout;
    companions->setContentsMargins(20, 0, 0, 0);
    body()->addLayout(companions);
    const QList<QCheckBox*> boxes = addChecks(
        {
            {"h2dTrayTalk", "Show tray tip when a user talks", &S::BalloonTalk, &S::setBalloonTalk},
            {"h2dTrayEmo", "Show tray tip when a user emotes", &S::BalloonEmote,
             &S::setBalloonEmote},
            {"h2dTrayWsp", "Show tray tip when a user whispers you", &S::BalloonWhisper,
             &S::setBalloonWhisper},
            {"h2dTrayBan", "Show tray tip when you are kicked or banned", &S::BalloonBan,
             &S::setBalloonBan},
            {"h2dTrayFriendOn", "Show tray tip when a friend comes online", &S::BalloonFriendOn,
             &S::setBalloonFriendOn},
            {"h2dTrayFriendOff", "Show tray tip when a friend goes offline", &S::BalloonFriendOff,
             &S::setBalloonFriendOff},
            {"h2dTrayFriendGame", "Show tray tip when a friend joins a game", &S::BalloonFriendGame,
             &S::setBalloonFriendGame},
        },
        companions);
    makeMaster(master, {boxes.begin(), boxes.end()});
    body()->addStretch(1);
}
