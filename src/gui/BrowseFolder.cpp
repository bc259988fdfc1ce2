#include "gui/BrowseFolder.h"

#include <QFileDialog>

QString BrowseFolder(QWidget* owner, const QString& title) {
    return QFileDialog::getExistingDirectory(owner, title);
}
