#include "gui/ControlPanelPlugins.h"

#include "config/SettingsWrapper.h"
#include "gui/PanelHelpers.h"
#include "platform/ListModel.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const QString kStartup = QStringLiteral("Startup");
const QString kShutdown = QStringLiteral("Shutdown");

void consoleLine(const QString& text, const QString& name) {
    WriteChat(0, Status::Information, text + u'"' + name + u'"');
}

} // namespace

ControlPanelPlugins::ControlPanelPlugins(QWidget* parent) : ControlPanelPage(parent) {
    setObjectName(QStringLiteral("h3g"));
    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Manage Plugins:")), 0, 0, 1, 2);

    m_plugins = new QListWidget;
    m_plugins->setObjectName(QStringLiteral("h3gPlug"));
    layout->addWidget(m_plugins, 1, 0, 3, 1);

    m_description = new QLabel;
    m_description->setObjectName(QStringLiteral("h3gDesc"));
    m_description->setWordWrap(true);
    m_description->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_description->setMinimumHeight(60);
    m_auto = new QCheckBox(QStringLiteral("&Load this plugin when the bot starts"));
    m_auto->setObjectName(QStringLiteral("h3gAuto"));
    m_action = new QPushButton(kStartup);
    m_action->setObjectName(QStringLiteral("h3gAction"));
    auto* chosen = new QVBoxLayout;
    chosen->addWidget(m_description, 1);
    chosen->addWidget(m_auto);
    chosen->addWidget(m_action, 0, Qt::AlignLeft);
    layout->addLayout(chosen, 1, 1);

    layout->addWidget(new QLabel(QStringLiteral("Plugin options:")), 2, 1);
    m_options = new QListView;
    m_options->setObjectName(QStringLiteral("h3gOptions"));
    m_options->setModel(&PluginHost::instance().options());
    m_options->setEditTriggers(QAbstractItemView::NoEditTriggers);
    layout->addWidget(m_options, 3, 1);
    layout->setColumnStretch(1, 1);

    // What each script or plug-in may grow the bot by before it is unloaded.
    m_memoryLimit = new QSpinBox;
    m_memoryLimit->setObjectName(QStringLiteral("h3gMemory"));
    m_memoryLimit->setRange(16, 65536);
    m_memoryLimit->setSuffix(QStringLiteral(" MB"));
    auto* memory = new QHBoxLayout;
    memory->addWidget(new QLabel(QStringLiteral("Memory a script or plugin may use:")));
    memory->addWidget(m_memoryLimit);
    memory->addStretch(1);
    layout->addLayout(memory, 4, 0, 1, 2);
    connect(m_memoryLimit, &QSpinBox::editingFinished, this,
            [this] { SettingsWrapper::instance().setScriptMemoryLimit(m_memoryLimit->value()); });

    connect(m_plugins, &QListWidget::currentRowChanged, this, [this] { showPlugin(); });
    connect(m_auto, &QCheckBox::clicked, this, &ControlPanelPlugins::toggleAutoLoad);
    connect(m_action, &QPushButton::clicked, this, &ControlPanelPlugins::startOrStop);
    connect(m_options, &QListView::activated, this, [](const QModelIndex& index) {
        PluginHost::instance().OptionClicked(index.data(ListModel::TagRole).toString());
    });
}

QString ControlPanelPlugins::selectedPlugin() const {
    return ChosenText(m_plugins);
}

void ControlPanelPlugins::load() {
    m_memoryLimit->setValue(SettingsWrapper::instance().ScriptMemoryLimit());
    FillChoosingFirst(m_plugins, PluginHost::PluginFiles());
    showPlugin();
}

void ControlPanelPlugins::showPlugin() {
    const QString name = selectedPlugin();
    const bool chosen = !name.isEmpty();
    m_action->setEnabled(chosen);
    m_auto->setEnabled(chosen);
    if (!chosen) {
        m_description->setText(QStringLiteral("There are no plugins in the Plugins folder."));
        m_auto->setChecked(false);
        m_action->setText(kStartup);
        return;
    }
    PluginHost& host = PluginHost::instance();
    m_action->setText(host.isLoaded(name) ? kShutdown : kStartup);
    m_auto->setChecked(PluginHost::AutoLoad(name));
    m_description->setText(host.Description(name));
}

void ControlPanelPlugins::toggleAutoLoad(bool on) {
    const QString name = selectedPlugin();
    if (name.isEmpty() || PluginHost::setAutoLoad(name, on)) return;
    m_auto->setChecked(!on);
    QMessageBox::warning(this, QStringLiteral("Manage Plugins"),
                         QStringLiteral("Could not write Plugins.ini in the settings folder."));
}

void ControlPanelPlugins::startOrStop() {
    const QString name = selectedPlugin();
    if (name.isEmpty()) return;
    PluginHost& host = PluginHost::instance();
    if (m_action->text() == kStartup) {
        consoleLine(QStringLiteral("- Importing plugin "), name);
        if (host.StartPlugin(name) == 0) {
            m_action->setText(kShutdown);
            return;
        }
        QMessageBox::warning(
            this, name + QStringLiteral(" cannot be loaded!"),
            QStringLiteral(
                "Could not load plugin, details have been posted in bot console window."));
        return;
    }
    consoleLine(QStringLiteral("- Terminating plugin "), name);
    if (host.StopPlugin(name) == 0) {
        m_action->setText(kStartup);
        return;
    }
    QMessageBox::warning(
        this, name + QStringLiteral(" cannot be unloaded!"),
        QStringLiteral("Could not unload plugin, details have been posted in bot console window."));
}
