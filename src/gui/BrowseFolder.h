#pragma once

#include <QString>

class QWidget;

// Asks the user for a folder, over the owner window; empty when the user
// chose none.
QString BrowseFolder(QWidget* owner, const QString& title);
