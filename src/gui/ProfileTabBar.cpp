#include "gui/ProfileTabBar.h"

#include "chat/BotElement.h"
#include "gui/IconPainter.h"
#include "session/SlotTable.h"

#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>
#include <QToolTip>

namespace {

constexpr int kBarHeight = 28;
constexpr int kButtonWidth = 26;
constexpr int kTabPadding = 10;
constexpr int kIconSize = 16;
constexpr int kMinTabWidth = 64;
constexpr int kMaxTabWidth = 180;

QString pictureOf(int slot) {
    if (slot == SlotTable::instance().CurrentIndex()) return IconPainter::TabActive;
    const BotElement& bot = Bots(slot);
    // Unseen talk outranks the plain online picture so that it can be seen.
    if (slot > 0 && bot.IsActive) return IconPainter::TabTalk;
    return bot.Online() ? IconPainter::TabOnline : IconPainter::TabOffline;
}

QString tooltipOf(int slot) {
    if (slot == 0) return QStringLiteral("Bot console");
    const BotElement& bot = Bots(slot);
    if (!bot.Online()) return bot.Config.Account() + QStringLiteral(" is not connected!");
    return QStringLiteral("Connected on account: ") + bot.UniqueAccount +
           (bot.IsActive ? QStringLiteral(" in active channel: ")
                         : QStringLiteral(" in channel: ")) +
           bot.Channel() + QStringLiteral(".");
}

QToolButton* makeButton(QWidget* parent, const QString& picture, const QString& tip) {
    auto* button = new QToolButton(parent);
    button->setIcon(IconPainter::icon(picture));
    button->setIconSize(QSize(kIconSize, kIconSize));
    button->setAutoRaise(true);
    button->setToolTip(tip);
    button->setFixedSize(kButtonWidth, kBarHeight - 4);
    return button;
}

} // namespace

ProfileTabBar::ProfileTabBar(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("guiProfileBar"));
    setMouseTracking(true);
    setFixedHeight(kBarHeight);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_add = makeButton(this, IconPainter::ButtonAdd, QStringLiteral("Load a profile"));
    m_add->setObjectName(QStringLiteral("guiProfileAdd"));
    m_add->setPopupMode(QToolButton::InstantPopup);
    m_drop = makeButton(this, IconPainter::ButtonDrop, QStringLiteral("More profiles"));
    m_drop->setObjectName(QStringLiteral("guiProfileDrop"));
    m_drop->setPopupMode(QToolButton::InstantPopup);
    m_close = makeButton(this, IconPainter::ButtonClose, QStringLiteral("Unload this profile"));
    m_close->setObjectName(QStringLiteral("guiCloseTab"));
    m_profilesList = new QMenu(this);
    m_profilesList->setObjectName(QStringLiteral("mnuProfilesList"));
    m_drop->setMenu(m_profilesList);
    connect(m_close, &QToolButton::clicked, this, &ProfileTabBar::closeClicked);
    m_console.profile = QStringLiteral("Console");
    fillProfilesList();
    m_drop->hide();
}

QSize ProfileTabBar::sizeHint() const {
    return {400, kBarHeight};
}

int ProfileTabBar::buttonsWidth() const {
    return 3 * kButtonWidth + 6;
}

void ProfileTabBar::tmrUpdate_Timer() {
    SlotTable& table = SlotTable::instance();
    int loaded = 0;
    for (int i = 1; i <= table.highestIndex(); ++i)
        loaded += Bots(i).IsLoaded ? 1 : 0;
    if (width() != m_builtWidth || loaded != m_builtCount) {
        m_builtWidth = width();
        m_builtCount = loaded;
        rebuild();
    }
    refreshStates();
    m_close->setVisible(table.CurrentIndex() > 0);
    placeButtons();
    update();
}

void ProfileTabBar::rebuildNow() {
    m_builtCount = -1;
    tmrUpdate_Timer();
}

void ProfileTabBar::rebuild() {
    SlotTable& table = SlotTable::instance();
    const QFontMetrics metrics(font());
    const auto tabWidth = [&](const QString& text) {
        return std::clamp(metrics.horizontalAdvance(text) + kIconSize + 3 * kTabPadding,
                          kMinTabWidth, kMaxTabWidth);
    };
    const int top = 3;
    const int height = kBarHeight - top;
    m_console.slot = 0;
    m_console.rect = QRect(2, top, tabWidth(m_console.profile), height);
    const int room = width() - buttonsWidth();
    int left = m_console.rect.right() + 1;
    m_tabs.clear();
    m_overflow.clear();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        const BotElement& bot = Bots(i);
        if (!bot.IsLoaded) continue;
        const int w = tabWidth(bot.Profile());
        // Once one tab doesn't fit, the ones after it follow it into the menu
        // so that the tabs keep the slot order.
        if (!m_overflow.isEmpty() || left + w > room) {
            m_overflow << bot.Profile();
            continue;
        }
        m_tabs.push_back({i, bot.Profile(), QRect(left, top, w, height), {}, {}});
        left += w;
    }
    fillProfilesList();
    m_drop->setVisible(!m_overflow.isEmpty());
}

void ProfileTabBar::refreshStates() {
    m_console.picture = pictureOf(0);
    m_console.tooltip = tooltipOf(0);
    for (Tab& tab : m_tabs) {
        tab.picture = pictureOf(tab.slot);
        tab.tooltip = tooltipOf(tab.slot);
    }
}

void ProfileTabBar::fillProfilesList() {
    m_profilesList->clear();
    if (m_overflow.isEmpty()) {
        m_profilesList->addAction(QStringLiteral("-"))->setEnabled(false);
        return;
    }
    for (const QString& profile : m_overflow) {
        m_profilesList->addAction(profile, this,
                                  [this, profile] { Q_EMIT overflowChosen(profile); });
    }
}

QStringList ProfileTabBar::profilesListRows() const {
    QStringList rows;
    for (const QAction* action : m_profilesList->actions())
        rows << action->text();
    return rows;
}

void ProfileTabBar::placeButtons() {
    const int y = (kBarHeight - m_add->height()) / 2 + 1;
    int x = width() - 2;
    // Flush right, skipping the hidden ones.
    for (QToolButton* button : {m_close, m_drop, m_add}) {
        if (button->isHidden()) continue;
        x -= kButtonWidth;
        button->move(x, y);
    }
}

QStringList ProfileTabBar::tabProfiles() const {
    QStringList names;
    for (const Tab& tab : m_tabs)
        names << tab.profile;
    return names;
}

const ProfileTabBar::Tab* ProfileTabBar::findTab(const QString& profile) const {
    if (profile.isEmpty()) return &m_console;
    for (const Tab& tab : m_tabs) {
        if (tab.profile == profile) return &tab;
    }
    return nullptr;
}

QRect ProfileTabBar::tabRect(const QString& profile) const {
    const Tab* tab = findTab(profile);
    return tab ? tab->rect : QRect();
}

QString ProfileTabBar::tabPicture(const QString& profile) const {
    const Tab* tab = findTab(profile);
    return tab ? tab->picture : QString();
}

QString ProfileTabBar::tabTooltip(const QString& profile) const {
    const Tab* tab = findTab(profile);
    return tab ? tab->tooltip : QString();
}

const ProfileTabBar::Tab* ProfileTabBar::tabAt(const QPoint& pos) const {
    if (m_console.rect.contains(pos)) return &m_console;
    for (const Tab& tab : m_tabs) {
        if (tab.rect.contains(pos)) return &tab;
    }
    return nullptr;
}

void ProfileTabBar::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), palette().window());
    const int current = SlotTable::instance().CurrentIndex();
    const auto paintTab = [&](const Tab& tab) {
        const bool active = tab.slot == current;
        const QRect r = tab.rect.adjusted(1, 0, -1, 0);
        QColor fill = palette().button().color();
        if (active)
            fill = palette().base().color();
        else if (tab.slot == m_hoveredSlot)
            fill = fill.lighter(125);
        p.setPen(Qt::NoPen);
        p.setBrush(fill);
        p.drawRoundedRect(r.adjusted(0, 0, 0, 4), 4, 4);
        if (active) {
            p.fillRect(QRect(r.left() + 2, r.top(), r.width() - 4, 2),
                       palette().highlight().color());
        }
        const QRect icon(r.left() + kTabPadding - 2, r.center().y() - kIconSize / 2 + 1, kIconSize,
                         kIconSize);
        IconPainter::paint(p, icon, tab.picture);
        const QRect text(icon.right() + 6, r.top(), r.right() - icon.right() - 6 - kTabPadding / 2,
                         r.height());
        p.setPen(palette().buttonText().color());
        p.drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
                   fontMetrics().elidedText(tab.profile, Qt::ElideRight, text.width()));
    };
    paintTab(m_console);
    for (const Tab& tab : m_tabs)
        paintTab(tab);
    p.setPen(palette().mid().color());
    p.drawLine(0, height() - 1, width(), height() - 1);
}

void ProfileTabBar::mouseReleaseEvent(QMouseEvent* event) {
    if (const Tab* tab = tabAt(event->position().toPoint()))
        Q_EMIT tabReleased(tab->slot, event->button(), event->globalPosition().toPoint());
    QWidget::mouseReleaseEvent(event);
}

void ProfileTabBar::mouseMoveEvent(QMouseEvent* event) {
    const Tab* tab = tabAt(event->position().toPoint());
    const int hovered = tab ? tab->slot : -1;
    if (hovered != m_hoveredSlot) {
        m_hoveredSlot = hovered;
        update();
    }
    QWidget::mouseMoveEvent(event);
}

void ProfileTabBar::leaveEvent(QEvent* event) {
    m_hoveredSlot = -1;
    update();
    QWidget::leaveEvent(event);
}

bool ProfileTabBar::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (const Tab* tab = tabAt(help->pos()))
            QToolTip::showText(help->globalPos(), tab->tooltip, this, tab->rect);
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

void ProfileTabBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeButtons();
    tmrUpdate_Timer();
}
