#include "gui/ControlPanelMedia.h"

#include "config/SettingsWrapper.h"
#include "media/SongWrapper.h"

#include <QDesktopServices>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStandardPaths>
#include <QUrl>
#include <QVBoxLayout>
#include <iterator>

using S = SettingsWrapper;

namespace {

// One player, in the order of PlayerNames: its option, the box of the
// command that starts it, and where the makers of the desktop player that
// stands for it offer that.
struct Player {
    SettingsPanelPage::Option option;
    SettingsPanelPage::Text path;
    const char* site;
};

const Player kPlayers[] = {
    {{"h2cOwinamp", "Winamp (Audacious)"},
     {"h2cWinamp", &S::WinampDir, &S::setWinampDir},
     "https://audacious-media-player.org/"},
    {{"h2cOwmp", "Windows Media Player (VLC)"},
     {"h2cWmp", &S::WmpDir, &S::setWmpDir},
     "https://www.videolan.org/vlc/"},
    {{"h2cOitunes", "iTunes (Rhythmbox)"},
     {"h2ciTunes", &S::iTunesDir, &S::setiTunesDir},
     "https://wiki.gnome.org/Apps/Rhythmbox"},
    {{"h2cOfoobar", "foobar2000 (DeaDBeeF)"},
     {"h2cFoobar", &S::FoobarDir, &S::setFoobarDir},
     "https://deadbeef.sourceforge.io/"},
};

const int kOther = int(std::size(kPlayers));

} // namespace

const QStringList& ControlPanelMedia::PlayerNames() {
    static const QStringList names{QStringLiteral("Winamp"), QStringLiteral("WMP"),
                                   QStringLiteral("iTunes"), QStringLiteral("foobar")};
    return names;
}

ControlPanelMedia::ControlPanelMedia(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Media Settings:"), parent) {
    auto* grid = new QGridLayout;
    body()->addLayout(grid);
    SettingsWrapper& settings = SettingsWrapper::instance();
    // Any other player goes by its name on the session bus ("spotify"). The
    // box is part of its option, not a stored value of its own.
    auto* otherName = new QLineEdit;
    otherName->setAccessibleName(QStringLiteral("Another player's name"));
    otherName->setPlaceholderText(QStringLiteral("its MPRIS name, e.g. spotify"));
    const QList<QRadioButton*> options = addOptions(
        {kPlayers[0].option,
         kPlayers[1].option,
         kPlayers[2].option,
         kPlayers[3].option,
         {"h2cOother", "Another player:"}},
        [&settings] {
            const QString chosen = settings.MediaPlayer();
            const int known = int(PlayerNames().indexOf(chosen));
            return known >= 0 || chosen.isEmpty() ? known : kOther;
        },
        // Winamp unless another is chosen and named.
        [&settings, otherName](int chosen) {
            const QString other = otherName->text().trimmed();
            if (chosen == kOther && !other.isEmpty())
                settings.setMediaPlayer(other);
            else
                settings.setMediaPlayer(PlayerNames().value(chosen, PlayerNames().first()));
        });
    bind(
        [&settings, otherName] {
            const QString chosen = settings.MediaPlayer();
            otherName->setText(PlayerNames().contains(chosen) ? QString() : chosen);
        },
        [] { return true; });
    const QString title = QStringLiteral("Select folder, the program will be appended");
    for (int row = 0; row < kOther; ++row) {
        const Player& player = kPlayers[row];
        grid->addWidget(options[row], row, 0);
        auto* path = new QHBoxLayout;
        const QString program = SongWrapper::DesktopPlayerFor(PlayerNames()[row]);
        QLineEdit* command = addPath(player.path, title, u'/' + program, path);
        command->setPlaceholderText(QStringLiteral("the command that starts it"));
        // An empty box offers the desktop's player when it is installed; it
        // is stored only by a save.
        bind(
            [command, program] {
                if (command->text().isEmpty())
                    command->setText(QStandardPaths::findExecutable(program));
            },
            [] { return true; });
        grid->addLayout(path, row, 1);
        auto* download = new QLabel(
            QStringLiteral("<a href=\"%1\">Download</a>").arg(QLatin1String(player.site)));
        download->setObjectName(QStringLiteral("h2cDL%1").arg(row));
        download->setToolTip(QLatin1String(player.site));
        connect(download, &QLabel::linkActivated, this,
                [](const QString& site) { QDesktopServices::openUrl(QUrl(site)); });
        grid->addWidget(download, row, 2);
    }
    grid->addWidget(options[kOther], kOther, 0);
    grid->addWidget(otherName, kOther, 1);
    grid->setColumnStretch(1, 1);
    addNote(QStringLiteral("Players are reached over the session bus (MPRIS). A known player "
                           "that is not running gives way to any player that is."));
    body()->addStretch(1);
}
