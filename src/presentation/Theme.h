#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <array>

// Colours are 24-bit values with red in the low byte. A value with the top
// bit set stands for a colour of the desktop's scheme (0x80000011 is grey
// text); DisplayColor turns it into a real colour.

// The colours the StarCraft escapes call by letter.
struct StarCraftColors {
    quint32 Grey = 0x80000011;
    quint32 Torquiose = 0xFFFF00;
    quint32 Violet = 0xFF00FF;
    quint32 Yellow = 0x00FFFF;
    quint32 Green = 0x00FF00;
    quint32 Red = 0x0000FF;
    quint32 White = 0xFFFFFF;
};

// The colours the Diablo escapes call by digit or sign.
struct DiabloColors {
    quint32 White = 0xFFFFFF;
    quint32 Red = 0x0000FF;
    quint32 Blue = 0xFF0000;
    quint32 Green = 0x00FF00;
    quint32 Yellow = 0x00FFFF;
    quint32 Grey = 0x80000011;
    quint32 Black = 0x333333;
    quint32 Orange = 0x2337BC;
    quint32 Gold = 0x00FFFF;
    quint32 Purple = 0xFF00FF;
    quint32 DarkGreen = 0x00FF00;
};

// The colours of users, in the list and in the chat text alike.
struct UserColors {
    quint32 Normal = 0x00FFFF;
    quint32 Moderator = 0xFFFF00;
    quint32 BlizzardRep = 0xFFFF00;
    quint32 Squelched = 0x0000FF;
    quint32 Blocked = 0x0000FF;
    quint32 Idle_10min = 0xE0E0E0;
    quint32 Idle_20min = 0xC0C0C0;
    quint32 Yourself = 0xFF00FF;
};

// Colours of the lines the program writes itself.
struct StatusColors {
    quint32 Success = 0x00FF00;
    quint32 Information = 0x00FFFF;
    quint32 Error = 0x0000FF;
    quint32 Failure = 0x0000FF;
    quint32 Warning = 0x00FFFF;
    quint32 Neutral = 0xFFFF00;
    quint32 Time = 0xC0C0C0;
};

struct ClanColors {
    quint32 Chieftain = 0x0000FF;
    quint32 Shaman = 0xFFFFFF;
    quint32 Peon = 0xFFFFFF;
    quint32 Grunt = 0xFFFFFF;
};

struct FriendColors {
    quint32 Offline = 0x80000011;
    quint32 Online = 0xFFFFFF;
    quint32 Mutual = 0x00FFFF;
};

// The window's own colours, and the texts kept for the window's style.
struct InterfaceColors {
    quint32 BackColor = 0;
    quint32 BorderColor = 0xA0A0A0;
    quint32 ForeColor = 0xFFFFFF;
    QString TextAlign = QStringLiteral("C");
    QString CenterPicture;
    QString LeftPicture;
    QString ListPicture;
    QString RightPicture;
};

// The templates of chat events: "#" and a mark choose the colour of what
// follows, "%" tokens stand for the event's values.
struct ChatEventTemplates {
    QString talk = QStringLiteral("#user<%user> #0%message");
    QString emote = QStringLiteral("#user<%user>#1 %message");
    QString whisperto = QStringLiteral("#user<To: %user> #0%message");
    QString whisperfrom = QStringLiteral("#user<From: %user> #0%message");
    QString join = QStringLiteral("#user%user #0has joined using %stats, with ping of %ping "
                                  "(%ping_status) and flags of %flags_display.");
    QString present = QStringLiteral("#user%user is present using %stats, with ping of %ping "
                                     "(%ping_status) and flags of %flags_display.");
    QString leave = QStringLiteral("#user%user #0has left the channel.");
    QString broadcast = QStringLiteral("#0[Broadcast] %message");
    QString channeljoined = QStringLiteral("#0Joined %channel_flags channel: #1 %channel");
    QString channeldoesnotexist = QStringLiteral("#0-- [Channel does not exist] --");
    QString channelfull = QStringLiteral("#0- [Channel is full, please try again in a moment] --");
    QString channelrestricted = QStringLiteral(
        "#0-- [Channel is restricted, if this is a clan channel it might be private] --");
    // Read, but no event prints through these three.
    QString flagupdate =
        QStringLiteral("#user%user's #0flags have been updated to %flags_display.");
    QString error = QStringLiteral("#0[Error] %message");
    QString info = QStringLiteral("#0[Info] %message"); // read from the key "error" too
};

// The theme in force: one record for the whole program, replaced on each load.
struct ThemeRecord {
    std::array<quint32, 10> custom{0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF,
                                   0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF};
    StarCraftColors starcraft;
    DiabloColors diablo;
    UserColors userList;   // DefinedUserColors
    UserColors userInChat; // DefinedUserInChatColors
    StatusColors status;
    ClanColors clan;
    FriendColors friends;
    InterfaceColors interface;
    QString time = QStringLiteral("#0[%time] ");
    ChatEventTemplates events;
};

ThemeRecord& CurrentTheme();

// A colour the view can show: values of the desktop's scheme become their
// classic colours; others keep their 24 bits.
quint32 DisplayColor(quint32 color);

// The folder of the theme files, "<program folder>/Themes/", created when
// missing.
QString ThemePath();
// Loads Themes/<name>.ini into the current theme; every key the file lacks
// takes its default. A missing file is created empty.
void LoadTheme(const QString& name);
// Copies the themes that come with the program into Themes/ where a file of
// that name is missing; the user's own edits are never overwritten.
void SeedDefaultThemes();

// The window half of a theme is the style sheet Themes/<name>.qss. These
// give the names of the style sheets (the rows of the theme menu), the one
// that ThemeID chooses, and a style sheet's text.
QStringList ImportThemes();
// The same names, in name order, without a word on the console.
QStringList ThemeNames();
QString ActiveThemeName();
QString ReadThemeStyleSheet(const QString& name);
// The theme menu: reports the choice on the slot on screen, stores it in
// ThemeID and asks the window to apply it.
void ChooseTheme(const QString& name);

// Tells the window what to change when a theme is loaded or chosen.
class ThemeEvents : public QObject {
    Q_OBJECT
public:
    static ThemeEvents& instance();

Q_SIGNALS:
    // LoadTheme ran: the window takes BackColor at once.
    void themeLoaded();
    // The style sheet of that name is to dress the window.
    void styleSheetChosen(const QString& name);
};
