#include "gui/DialogParts.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>

void ShowWarning(QWidget* parent, const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Corvantide"), text,
                                QMessageBox::Ok, parent);
    box->setObjectName(QStringLiteral("warningBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    // After the event that led here: an Enter that is still on its way to
    // the dialog would otherwise press the box's OK at once.
    QMetaObject::invokeMethod(box, &QDialog::open, Qt::QueuedConnection);
}

QPushButton* DialogButton(const QString& text, const QString& name, const QString& tip) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setAutoDefault(false);
    return button;
}

QDialogButtonBox* CloseButtons(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}
