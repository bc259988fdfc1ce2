#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;
class QPushButton;
class QWidget;

// Pieces the profile dialogs share.

// A warning with one OK button over a dialog. It doesn't block: the dialog
// and the sessions go on while it shows.
void ShowWarning(QWidget* parent, const QString& text);

// A button that Enter in a text box of the dialog never presses.
QPushButton* DialogButton(const QString& text, const QString& name, const QString& tip);

// The Close button of a dialog, as Escape does it.
QDialogButtonBox* CloseButtons(QDialog* dialog);
