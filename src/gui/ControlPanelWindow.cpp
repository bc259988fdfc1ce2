#include "gui/ControlPanelWindow.h"

#include "config/SettingsWrapper.h"

#include <QCheckBox>
#include <QVBoxLayout>

using S = SettingsWrapper;

ControlPanelWindow::ControlPanelWindow(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Window Settings:"), parent) {
    QCheckBox* master =
        addChecks(
            {
                {"h2eFlash",
                 "Let window flash when something happens and Corvantide is not the active window",
                 &S::Flash, &S::setFlash},
            })
            .first();
    auto* companions = new QVBoxLayout;
    companions->setContentsMargins(20, 0, 0, 0);
    body()->addLayout(companions);
    const QList<QCheckBox*> flashes = addChecks(
        {
            {"h2eFlashTalk", "Flash when someone talks", &S::FlashTalk, &S::setFlashTalk},
            {"h2eFlashEmo", "Flash when someone emotes", &S::FlashEmote, &S::setFlashEmote},
            {"h2eFlashWsp", "Flash when someone whispers you", &S::FlashWhisper,
             &S::setFlashWhisper},
            {"h2eFlashBan", "Flash when you are kicked or banned", &S::FlashBan, &S::setFlashBan},
            {"h2eFlashFriendOn", "Flash when a friend comes online", &S::FlashFriendOn,
             &S::setFlashFriendOn},
            {"h2eFlashFriendOff", "Flash when a friend goes offline", &S::FlashFriendOff,
             &S::setFlashFriendOff},
            {"h2eFlashFriendGame", "Flash when a friend joins a game", &S::FlashFriendGame,
             &S::setFlashFriendGame},
        },
        companions);
    makeMaster(master, {flashes.begin(), flashes.end()});
    body()->addSpacing(12);
    addChecks({
        {"h2eLog", "Enable logging of chat window when it is cleared", &S::Logging, &S::setLogging},
        {"h2eStartup", "Start Corvantide when you log on to the desktop", &S::WindowsStartup,
         &S::setWindowsStartup},
    });
    body()->addStretch(1);
}
