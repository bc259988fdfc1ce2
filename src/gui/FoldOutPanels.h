#pragma once

#include <QWidget>
#include <array>

class ClanPanel;
class MusicPanel;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;
class QTreeWidget;

// The row of panels that fold out above the status bar, each on its own:
// information about the machine, the clan, the channels of the active slot
// (rejoin, home, the server's channel list and ten quick channels), the media
// player and the plug-ins.
class FoldOutPanels : public QWidget {
    Q_OBJECT
public:
    enum Panel { Information, Clan, Channels, Music, Plugins, PanelCount };

    explicit FoldOutPanels(QMenu* channelsMenu, QWidget* parent = nullptr);

    // Shows a hidden panel or hides a shown one; opening the information
    // panel reads its facts again.
    void toggle(int panel);
    bool isShown(int panel) const;
    // The active slot's quick channels, home channel and clan.
    void showSlot(int index);
    // The clan panel follows the slot's clan tag.
    void refreshClan(int index);

    QLineEdit* txtQuick(int row) const { return m_quick.at(size_t(row)); }
    QLabel* lblInformation() const { return m_information; }
    MusicPanel* music() const { return m_music; }
    QToolButton* guiHome() const { return m_home; }
    // Joins the channel of a quick row, unless it is empty or "--".
    void imgQuickJoin(int row);
    // Puts the slot's channel into a quick row.
    void imgQuickAdd(int row);

    static constexpr int kQuickRows = 10;

Q_SIGNALS:
    // The clan panel's "View/edit members".
    void clanMembersRequested();
    // A button of the music panel did its work.
    void musicUsed();
    // The music panel's "Settings".
    void mediaSettingsRequested();
    // The plug-ins panel's "View/load plugins".
    void pluginSettingsRequested();

private:
    QWidget* makeInformation();
    QWidget* makeClan();
    QWidget* makeChannels();
    QWidget* makeMusic();
    QWidget* makePlugins();
    void refreshInformation();
    void refreshPlugins();
    void changeHome();
    void join(const QString& channel);

    std::array<QWidget*, PanelCount> m_panels{};
    std::array<QLineEdit*, kQuickRows> m_quick{};
    QMenu* m_channelsMenu;
    QLabel* m_information = nullptr;
    ClanPanel* m_clan = nullptr;
    MusicPanel* m_music = nullptr;
    QToolButton* m_home = nullptr;
    QTreeWidget* m_plugins = nullptr;
    int m_slot = 0;
};
