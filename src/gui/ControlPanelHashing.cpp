#include "gui/ControlPanelHashing.h"

#include "config/SettingsWrapper.h"

#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>
#include <iterator>

using S = SettingsWrapper;

ControlPanelHashing::ControlPanelHashing(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Hashing settings:"), parent) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    const QList<QRadioButton*> options = addOptions(
        {{"h1bLocal", "Enable local hashing (advanced)"},
         {"h1bRemote", "Enable remote hashing (recommended)"}},
        [&settings] { return settings.LocalHashing() ? 0 : 1; },
        [&settings](int chosen) { settings.setLocalHashing(chosen == 0); });
    for (QRadioButton* option : options)
        body()->addWidget(option);
    addNote(QStringLiteral("This will connect via BNLS or JBLS, please select this option for "
                           "StarCraft and WarCraft II clients"));

    auto* frame = new QGroupBox(QStringLiteral("Please set up hash file locations"));
    frame->setObjectName(QStringLiteral("h1bFrame"));
    auto* paths = new QVBoxLayout(frame);
    const QString title = QStringLiteral("Please select path to hash files");
    const Text rows[] = {
        {"h1bD2DV", &S::PathD2DV, &S::setPathD2DV},
        {"h1bD2XP", &S::PathD2XP, &S::setPathD2XP},
        {"h1bWAR3", &S::PathWAR3, &S::setPathWAR3},
    };
    const char* const games[] = {"Diablo II", "Diablo II: Lord of Destruction", "WarCraft III"};
    for (size_t i = 0; i < std::size(rows); ++i) {
        paths->addWidget(new QLabel(QLatin1String(games[i])));
        addPath(rows[i], title, {}, paths);
    }
    body()->addWidget(frame);
    body()->addStretch(1);

    // The folders matter only for local hashing.
    QRadioButton* local = options.first();
    connect(local, &QRadioButton::toggled, frame, &QWidget::setEnabled);
    bind([frame, local] { frame->setEnabled(local->isChecked()); }, [] { return true; });
}
