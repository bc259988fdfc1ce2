#include "gui/ControlPanelMedia.h"

#include "config/SettingsWrapper.h"

#include <QDesktopServices>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QUrl>
#include <QVBoxLayout>
#include <iterator>

using S = SettingsWrapper;

namespace {

// One player: its option, its path box, what the find button appends to the
// folder, and where its maker offers it.
struct Player {
    SettingsPanelPage::Option option;
    SettingsPanelPage::Text path;
    const char* program;
    const char* site;
};

const Player kPlayers[] = {
    {{"h2cOwinamp", "Winamp"},
     {"h2cWinamp", &S::WinampDir, &S::setWinampDir},
     "/Winamp.exe",
     "https://www.winamp.com/"},
    {{"h2cOwmp", "Windows Media Player"},
     {"h2cWmp", &S::WmpDir, &S::setWmpDir},
     "/wmplayer.exe",
     "https://www.microsoft.com/windows/windowsmedia/"},
    {{"h2cOitunes", "iTunes"},
     {"h2ciTunes", &S::iTunesDir, &S::setiTunesDir},
     "/iTunes.exe",
     "https://www.apple.com/itunes/"},
    {{"h2cOfoobar", "foobar2000"},
     {"h2cFoobar", &S::FoobarDir, &S::setFoobarDir},
     "/foobar2000.exe",
     "https://www.foobar2000.org/"},
};

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
    const QList<QRadioButton*> options = addOptions(
        {kPlayers[0].option, kPlayers[1].option, kPlayers[2].option, kPlayers[3].option},
        [&settings] { return int(PlayerNames().indexOf(settings.MediaPlayer())); },
        // Winamp unless one of the other three is chosen.
        [&settings](int chosen) {
            settings.setMediaPlayer(PlayerNames().value(chosen, PlayerNames().first()));
        });
    const QString title = QStringLiteral("Select folder, exe will be appended");
    for (int row = 0; row < int(std::size(kPlayers)); ++row) {
        const Player& player = kPlayers[row];
        grid->addWidget(options[row], row, 0);
        auto* path = new QHBoxLayout;
        addPath(player.path, title, QLatin1String(player.program), path);
        grid->addLayout(path, row, 1);
        auto* download = new QLabel(
            QStringLiteral("<a href=\"%1\">Download</a>").arg(QLatin1String(player.site)));
        download->setObjectName(QStringLiteral("h2cDL%1").arg(row));
        download->setToolTip(QLatin1String(player.site));
        connect(download, &QLabel::linkActivated, this,
                [](const QString& site) { QDesktopServices::openUrl(QUrl(site)); });
        grid->addWidget(download, row, 2);
    }
    grid->setColumnStretch(1, 1);
    body()->addStretch(1);
}
