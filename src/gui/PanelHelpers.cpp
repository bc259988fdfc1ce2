#include "gui/PanelHelpers.h"

#include "commands/ManageOutcome.h"

#include <QListWidget>
#include <QMessageBox>

bool AcceptedOrWarned(QWidget* parent, const QString& title, const ManageOutcome& outcome) {
    if (outcome.ok) return true;
    QMessageBox::warning(parent, title, outcome.warning);
    return false;
}

void FillChoosingFirst(QListWidget* list, const QStringList& rows) {
    const QSignalBlocker quiet(list);
    list->clear();
    list->addItems(rows);
    list->setCurrentRow(list->count() > 0 ? 0 : -1);
}

QString ChosenText(const QListWidget* list) {
    const QListWidgetItem* item = list->currentItem();
    return item ? item->text() : QString();
}
