#include "gui/FoldOutPanels.h"

#include "chat/BotElement.h"
#include "config/Folders.h"
#include "gui/ClanPanel.h"
#include "gui/IconPainter.h"
#include "gui/MusicPanel.h"
#include "plugins/PluginHost.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QWidget* framed(const QString& title, QWidget* body, const QString& name) {
    auto* frame = new QFrame;
    frame->setObjectName(name);
    frame->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->setSpacing(4);
    auto* heading = new QLabel(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    layout->addWidget(heading);
    layout->addWidget(body, 1);
    frame->hide();
    return frame;
}

QToolButton* linkButton(const QString& text, const QString& tip = {}) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

QToolButton* iconButton(const QString& picture, const QString& tip) {
    auto* button = new QToolButton;
    button->setIcon(IconPainter::icon(picture));
    button->setIconSize(QSize(12, 12));
    button->setToolTip(tip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

FoldOutPanels::FoldOutPanels(QMenu* channelsMenu, QWidget* parent)
    : QWidget(parent), m_channelsMenu(channelsMenu) {
    setObjectName(QStringLiteral("guiToolbarBox"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    m_panels = {makeInformation(), makeClan(), makeChannels(), makeMusic(), makePlugins()};
    for (QWidget* panel : m_panels)
        row->addWidget(panel);
    row->addStretch(1);
    hide();
}

bool FoldOutPanels::isShown(int panel) const {
    return panel >= 0 && panel < PanelCount && !m_panels[size_t(panel)]->isHidden();
}

void FoldOutPanels::toggle(int panel) {
    if (panel < 0 || panel >= PanelCount) return;
    QWidget* box = m_panels[size_t(panel)];
    const bool show = box->isHidden();
    if (show && panel == Information) refreshInformation();
    if (show && panel == Plugins) refreshPlugins();
    box->setVisible(show);
    bool any = false;
    for (int i = 0; i < PanelCount; ++i)
        any = any || isShown(i);
    setVisible(any);
}

QWidget* FoldOutPanels::makeInformation() {
    m_information = new QLabel;
    m_information->setObjectName(QStringLiteral("lblInformation"));
    m_information->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return framed(QStringLiteral("Information"), m_information, QStringLiteral("guiInformation"));
}

void FoldOutPanels::refreshInformation() {
    const MachineFacts& m = Machine();
    m_information->setText(QStringList{
        QStringLiteral("Operating System: ") + m.OperatingSystem,
        QStringLiteral("Country: ") + m.CountryName,
        QStringLiteral("Language: ") + m.LanguageName,
        QStringLiteral("Windows Username: ") + m.UserName,
        QStringLiteral("Bot Path: ") + GetProgramFolder(),
        QStringLiteral("Settings Path: ") + GetSettingsPath(),
    }
                               .join(u'\n'));
}

QWidget* FoldOutPanels::makeClan() {
    m_clan = new ClanPanel;
    connect(m_clan, &ClanPanel::membersRequested, this, &FoldOutPanels::clanMembersRequested);
    return framed(QStringLiteral("Clan"), m_clan, QStringLiteral("guiClan"));
}

void FoldOutPanels::refreshClan(int index) {
    if (index == m_slot) m_clan->showSlot(index);
}

QWidget* FoldOutPanels::makeChannels() {
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* top = new QHBoxLayout;
    QToolButton* rejoin = linkButton(QStringLiteral("Rejoin"));
    connect(rejoin, &QToolButton::clicked, this, [this] { join(Bots(m_slot).ChannelNonVoid()); });
    m_home = linkButton(QStringLiteral("Home"));
    m_home->setObjectName(QStringLiteral("guiHome"));
    connect(m_home, &QToolButton::clicked, this, [this] { join(Bots(m_slot).Config.Channel()); });
    QToolButton* change = linkButton(QStringLiteral("(change)"));
    change->setObjectName(QStringLiteral("guiChangeHome"));
    connect(change, &QToolButton::clicked, this, &FoldOutPanels::changeHome);
    QToolButton* list = linkButton(QStringLiteral("Battle.net channels"));
    list->setObjectName(QStringLiteral("guiChannelList"));
    connect(list, &QToolButton::clicked, this,
            [this, list] { m_channelsMenu->popup(list->mapToGlobal(QPoint(0, list->height()))); });
    for (QToolButton* b : {rejoin, m_home, change, list})
        top->addWidget(b);
    top->addStretch(1);
    layout->addLayout(top);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2);
    grid->setVerticalSpacing(2);
    constexpr int perColumn = kQuickRows / 2;
    for (int r = 0; r < kQuickRows; ++r) {
        auto* text = new QLineEdit;
        text->setObjectName(QStringLiteral("txtQuick%1").arg(r));
        text->setMinimumWidth(110);
        connect(text, &QLineEdit::textEdited, this,
                [this, r](const QString& value) { Bots(m_slot).Config.setChannels(r, value); });
        m_quick[size_t(r)] = text;
        QToolButton* add =
            iconButton(IconPainter::ButtonAdd, QStringLiteral("Set text to the current channel"));
        connect(add, &QToolButton::clicked, this, [this, r] { imgQuickAdd(r); });
        QToolButton* go = iconButton(IconPainter::ButtonJoin, QStringLiteral("Join channel"));
        connect(go, &QToolButton::clicked, this, [this, r] { imgQuickJoin(r); });
        const int column = (r / perColumn) * 3;
        grid->addWidget(text, r % perColumn, column);
        grid->addWidget(add, r % perColumn, column + 1);
        grid->addWidget(go, r % perColumn, column + 2);
    }
    layout->addLayout(grid);
    return framed(QStringLiteral("Channels"), body, QStringLiteral("guiChannels"));
}

void FoldOutPanels::showSlot(int index) {
    m_slot = index;
    BotElement& bot = Bots(index);
    m_panels[Channels]->setEnabled(index > 0);
    for (int r = 0; r < kQuickRows; ++r)
        m_quick[size_t(r)]->setText(index > 0 ? bot.Config.Channels(r) : QString());
    m_home->setToolTip(index > 0 ? bot.Config.Channel() : QString());
    refreshClan(index);
}

void FoldOutPanels::imgQuickAdd(int row) {
    const QString channel = Bots(m_slot).Channel();
    m_quick.at(size_t(row))->setText(channel);
    Bots(m_slot).Config.setChannels(row, channel);
}

void FoldOutPanels::imgQuickJoin(int row) {
    const QString channel = m_quick.at(size_t(row))->text();
    if (channel.isEmpty() || channel == QLatin1String("--")) return;
    join(channel);
}

void FoldOutPanels::join(const QString& channel) {
    if (m_slot > 0) Bots(m_slot).Connection.Output_JoinChannel(m_slot, channel);
}

void FoldOutPanels::changeHome() {
    if (m_slot <= 0) return;
    auto* dialog = new QInputDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(QStringLiteral("Change home channel ..."));
    dialog->setLabelText(QStringLiteral("Enter new home channel:"));
    const int slot = m_slot;
    connect(dialog, &QInputDialog::textValueSelected, this, [this, slot](const QString& text) {
        if (text.isEmpty() || !Bots(slot).IsLoaded) return;
        Bots(slot).Config.setChannel(text);
        if (slot == m_slot) m_home->setToolTip(text);
    });
    dialog->open();
}

QWidget* FoldOutPanels::makeMusic() {
    m_music = new MusicPanel;
    connect(m_music, &MusicPanel::used, this, &FoldOutPanels::musicUsed);
    connect(m_music, &MusicPanel::settingsRequested, this, &FoldOutPanels::mediaSettingsRequested);
    return framed(QStringLiteral("Music"), m_music, QStringLiteral("guiMusic"));
}

QWidget* FoldOutPanels::makePlugins() {
    auto* body = new QWidget;
    auto* column = new QVBoxLayout(body);
    column->setContentsMargins(0, 0, 0, 0);
    QToolButton* view = linkButton(QStringLiteral("View/load plugins"),
                                   QStringLiteral("The plug-ins page of the control panel"));
    view->setObjectName(QStringLiteral("guiViewPlugins"));
    connect(view, &QToolButton::clicked, this, &FoldOutPanels::pluginSettingsRequested);
    column->addWidget(view, 0, Qt::AlignLeft);
    m_plugins = new QTreeWidget;
    m_plugins->setObjectName(QStringLiteral("lvPlugins"));
    m_plugins->setHeaderLabels({QStringLiteral("Plug-in"), QStringLiteral("Events")});
    m_plugins->setRootIsDecorated(false);
    m_plugins->setMinimumWidth(220);
    m_plugins->header()->setStretchLastSection(true);
    column->addWidget(m_plugins, 1);
    return framed(QStringLiteral("Plugins"), body, QStringLiteral("guiPlugins"));
}

void FoldOutPanels::refreshPlugins() {
    m_plugins->clear();
    for (const PluginRecord& record : PluginHost::instance().plugins()) {
        if (record.Name.isEmpty()) continue;
        QStringList events;
        if (record.Flags & PluginHost::ChatEvents) events << QStringLiteral("chat");
        if (record.Flags & PluginHost::SocketEvents) events << QStringLiteral("packets");
        if (record.Flags & PluginHost::MediaEvents) events << QStringLiteral("media");
        new QTreeWidgetItem(m_plugins, {record.Name, events.join(QStringLiteral(", "))});
    }
}
