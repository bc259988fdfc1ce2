#include "gui/ControlPanelFilters.h"

#include "commands/BlocksAndFilters.h"
#include "config/SettingsWrapper.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

const QList<qint32>& ControlPanelFilters::FloodIntervals() {
    static const QList<qint32> intervals{0, 500, 1000, 2000};
    return intervals;
}

ControlPanelFilters::ControlPanelFilters(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Filters:"), parent) {
    auto* flood = new QComboBox;
    flood->setObjectName(QStringLiteral("h3dFlood"));
    flood->addItems({QStringLiteral("Off"), QStringLiteral("Mode 1 ( 500ms )"),
                     QStringLiteral("Mode 2 ( 1000ms )"), QStringLiteral("Mode 3 ( 2000ms )")});
    auto* line = new QHBoxLayout;
    line->addWidget(new QLabel(QStringLiteral("Flood filter:")));
    line->addWidget(flood);
    line->addStretch(1);
    body()->addLayout(line);
    SettingsWrapper& settings = SettingsWrapper::instance();
    bind(
        [&settings, flood] {
            flood->setCurrentIndex(
                std::max(0, int(FloodIntervals().indexOf(settings.FloodMode()))));
        },
        [&settings, flood] {
            settings.setFloodMode(FloodIntervals().value(flood->currentIndex()));
            return true;
        });

    addNote(QStringLiteral("Anything that someone says containing one of the following lines of "
                           "text will be removed from display."));
    addLines(
        "h3dMessages", QStringLiteral("MessageFilters.ini"),
        [] { return entriesOf(MessageFilters()); },
        [](const QStringList& lines) { return ReplaceMessageFiltersFile(lines); });
}
