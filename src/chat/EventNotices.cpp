#include "chat/EventNotices.h"

#include "chat/BotElement.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"
#include "statistics/UserNames.h"

namespace {

struct NoticeSettings {
    bool flash;
    bool balloon;
};

QString tipText(NoticeEvent event, const QString& Username, const QString& Text) {
    const char* verb = nullptr;
    if (event == NoticeEvent::Talk) verb = " said ";
    if (event == NoticeEvent::Emote) verb = " emoted ";
    if (event == NoticeEvent::Whisper) verb = " whispered you saying ";
    if (!verb) return Text;
    return GetDisplayName(Username) + QLatin1String(verb) + u'"' + Text + QStringLiteral("\".");
}

NoticeSettings settingsOf(NoticeEvent event) {
    const SettingsWrapper& s = SettingsWrapper::instance();
    switch (event) {
    case NoticeEvent::Talk:
        return {s.FlashTalk(), s.BalloonTalk()};
    case NoticeEvent::Emote:
        return {s.FlashEmote(), s.BalloonEmote()};
    case NoticeEvent::Whisper:
        return {s.FlashWhisper(), s.BalloonWhisper()};
    case NoticeEvent::FriendEntered:
        return {s.FlashFriendOn(), s.BalloonFriendOn()};
    case NoticeEvent::FriendExited:
        return {s.FlashFriendOff(), s.BalloonFriendOff()};
    case NoticeEvent::Kicked:
        return {s.FlashBan(), s.BalloonBan()};
    }
    return {false, false};
}

} // namespace

void NotifyEvent(int Index, NoticeEvent event, const QString& Username, const QString& Text) {
    const SettingsWrapper& s = SettingsWrapper::instance();
    DesktopShell& shell = DesktopShell::instance();
    // The master switches first: most runs have both off, and then the
    // event's own settings are not read at all.
    const bool flash = s.Flash();
    const bool balloon = s.Balloon() && shell.WindowInTray();
    if (!flash && !balloon) return;
    const NoticeSettings wanted = settingsOf(event);
    if (flash && wanted.flash) shell.FlashBotWindow();
    if (balloon && wanted.balloon)
        shell.ShowBalloon(Bots(Index).Profile(), tipText(event, Username, Text));
}
