#pragma once

#include <QString>
#include <QStringList>

struct ManageOutcome;
class QListWidget;
class QWidget;

// Small pieces the management pages share.

// Shows a refusal of the store or of its editors in a warning box titled
// after the page; true when there was none to show.
bool AcceptedOrWarned(QWidget* parent, const QString& title, const ManageOutcome& outcome);
// Replaces the rows and chooses the first, without telling the list's
// watchers: the page shows the chosen row itself after.
void FillChoosingFirst(QListWidget* list, const QStringList& rows);
// The text of the chosen row; empty with none.
QString ChosenText(const QListWidget* list);
