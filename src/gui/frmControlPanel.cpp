#include "gui/frmControlPanel.h"

#include "gui/ControlPanelPage.h"
#include "gui/ControlPanelPages.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <cstring>

namespace {

// Each row's text in the list and the name of its panel; headings have a
// name of two characters.
struct Row {
    const char* text;
    const char* panel;

    bool heading() const { return std::strlen(panel) == 2; }
};

const Row kRows[frmControlPanel::RowCount] = {
    {"Connection", "h1"},  {" -- Automated", "h1a"}, {" -- Hashing", "h1b"},
    {"Display", "h2"},     {" -- Chat", "h2a"},      {" -- Fonts", "h2f"},
    {" -- Icons", "h2b"},  {" -- Media", "h2c"},     {" -- Tooltips", "h2d"},
    {" -- Window", "h2e"}, {"Manage", "h3"},         {" -- Aliases", "h3a"},
    {" -- Blocks", "h3b"}, {" -- Databases", "h3c"}, {" -- Filters", "h3d"},
    {" -- Groups", "h3e"}, {" -- Macros", "h3f"},    {" -- Plugins", "h3g"},
    {" -- Web page", "h3h"},
};

} // namespace

frmControlPanel::frmControlPanel(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("frmControlPanel"));
    setWindowTitle(QStringLiteral("Control Panel"));
    resize(720, 520);

    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("cbSettings"));
    m_list->setFixedWidth(150);
    for (const Row& row : kRows) {
        auto* item = new QListWidgetItem(QLatin1String(row.text), m_list);
        // Headings stand out from the rows under them.
        if (row.heading()) {
            QFont font = item->font();
            font.setBold(true);
            item->setFont(font);
        }
    }
    m_stack = new QStackedWidget;
    m_pages.assign(RowCount, nullptr);
    for (int row = 0; row < RowCount; ++row)
        m_stack->addWidget(new QWidget);
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("lblStatus"));

    auto* right = new QVBoxLayout;
    right->addWidget(m_stack, 1);
    right->addWidget(m_status);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_list);
    layout->addLayout(right, 1);

    connect(m_list, &QListWidget::currentRowChanged, this, &frmControlPanel::showRow);
    auto* save = new QShortcut(QKeySequence::Save, this);
    connect(save, &QShortcut::activated, this, &frmControlPanel::saveCurrent);

    selectRow(0);
}

// Escape that no box took for itself (an open drop-down list closes first).
void frmControlPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

void frmControlPanel::selectRow(int row) {
    if (row < 0 || row >= RowCount) return;
    if (row == m_list->currentRow())
        showRow(row);
    else
        m_list->setCurrentRow(row);
}

int frmControlPanel::currentRow() const {
    return m_list->currentRow();
}

ControlPanelPage* frmControlPanel::page(int row) {
    if (row < 0 || row >= RowCount) return nullptr;
    if (!m_pages[size_t(row)]) {
        QWidget* panel = buildPanel(row);
        QWidget* old = m_stack->widget(row);
        m_stack->insertWidget(row, panel);
        m_stack->removeWidget(old);
        delete old;
    }
    return m_pages[size_t(row)];
}

// The page, and its Save and Cancel under it.
QWidget* frmControlPanel::buildPanel(int row) {
    const Row& info = kRows[row];
    auto* panel = new QWidget;
    panel->setObjectName(QLatin1String(info.panel));
    auto* layout = new QVBoxLayout(panel);
    ControlPanelPage* content = CreateControlPanelPage(row, panel);
    layout->addWidget(content, 1);
    m_pages[size_t(row)] = content;
    if (content->hasSaveAndCancel()) {
        auto* buttons = new QHBoxLayout;
        buttons->addStretch(1);
        auto* save = new QPushButton(QStringLiteral("&Save"));
        save->setObjectName(QLatin1String(info.panel) + QStringLiteral("Save"));
        save->setToolTip(QStringLiteral("Store what this panel shows (Ctrl+S)"));
        auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
        cancel->setObjectName(QLatin1String(info.panel) + QStringLiteral("Cancel"));
        cancel->setToolTip(QStringLiteral("Show what is stored again, throwing edits away"));
        buttons->addWidget(save);
        buttons->addWidget(cancel);
        layout->addLayout(buttons);
        connect(save, &QPushButton::clicked, this, &frmControlPanel::saveCurrent);
        connect(cancel, &QPushButton::clicked, this, &frmControlPanel::cancelCurrent);
    }
    return panel;
}

void frmControlPanel::showRow(int row) {
    if (row < 0 || row >= RowCount) return;
    ControlPanelPage* shown = page(row);
    m_stack->setCurrentIndex(row);
    m_status->clear();
    shown->load();
}

bool frmControlPanel::saveCurrent() {
    ControlPanelPage* shown = page(currentRow());
    if (!shown || !shown->hasSaveAndCancel()) return false;
    const bool saved = shown->save();
    m_status->setText(saved ? QStringLiteral("Saved.") : QStringLiteral("Not saved."));
    return saved;
}

void frmControlPanel::cancelCurrent() {
    if (ControlPanelPage* shown = page(currentRow())) {
        shown->load();
        m_status->setText(QStringLiteral("Edits thrown away; the panel shows what is stored."));
    }
}
