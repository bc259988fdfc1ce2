#include "gui/ControlPanelChat.h"

#include "config/SettingsWrapper.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

using S = SettingsWrapper;

ControlPanelChat::ControlPanelChat(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Chat settings:"), parent) {
    auto* columns = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    columns->addLayout(left);
    columns->addLayout(right);
    body()->addLayout(columns);
    addChecks(
        {
            {"h2aBan", "Hide ban/unban messages", &S::HideBanUnban, &S::setHideBanUnban},
            {"h2aEmote", "Hide emote messages", &S::HideEmote, &S::setHideEmote},
            {"h2aJoin", "Hide join/leave messages", &S::HideJoinLeave, &S::setHideJoinLeave},
            {"h2aPresent", "Hide present messages", &S::HidePresent, &S::setHidePresent},
            {"h2aOffline", "Hide offline users in /f list", &S::HideOfflineFriends,
             &S::setHideOfflineFriends},
            {"h2aChar", "Hide character names when on Diablo II", &S::HideChars, &S::setHideChars},
            {"h2aVoid", "Hide users when in The Void", &S::VoidView, &S::setVoidView},
        },
        left);
    addChecks(
        {
            {"h2aUTF8", "Decode messages into UTF-8", &S::DecodeUTF8, &S::setDecodeUTF8},
            {"h2aDecrypt", "Decrypt incoming messages", &S::Decryption, &S::setDecryption},
            {"h2aEncrypt", "Encrypt outgoing messages", &S::Encryption, &S::setEncryption},
            {"h2aCensor", "Censor profanity", &S::RemoveProfanity, &S::setRemoveProfanity},
            {"h2aUncensor", "Uncensor profanity", &S::ImproveProfanity, &S::setImproveProfanity},
            {"h2aAutoCQ", "Clear queue periodically", &S::AutoCQ, &S::setAutoCQ},
        },
        right);
    left->addStretch(1);
    right->addStretch(1);

    auto* colors = new QGroupBox(QStringLiteral("Colour codes in messages"));
    auto* options = new QHBoxLayout(colors);
    SettingsWrapper& settings = SettingsWrapper::instance();
    for (QRadioButton* option : addOptions(
             {{"h2aColpar", "Parse colors"},
              {"h2aColrem", "Remove colors"},
              {"h2aColign", "Ignore colors"}},
             [&settings] { return settings.ColorDisp(); },
             [&settings](int chosen) { settings.setColorDisp(std::max(chosen, 0)); }))
        options->addWidget(option);
    body()->addWidget(colors);
    body()->addStretch(1);
}
