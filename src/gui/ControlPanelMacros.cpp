#include "gui/ControlPanelMacros.h"

#include "commands/MacroWrapper.h"

#include <QLabel>

ControlPanelMacros::ControlPanelMacros(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Manage Macros:"), parent) {
    addNote(QStringLiteral("Macros allow you to send a picture/multiple lines of text with ease. "
                           "Macros must be filled out in the following format:"));
    addNote(QStringLiteral("Name {\nLine1\nLine2\n}"))->setObjectName(QStringLiteral("h3fFormat"));
    addLines("h3fMacros", QStringLiteral("Macros.ini"), &MacroWrapper::FileLines,
             [](const QStringList& lines) { return MacroWrapper::instance().ReplaceFile(lines); });
}
