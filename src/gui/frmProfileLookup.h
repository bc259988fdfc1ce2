#pragma once

#include <QDialog>
#include <QStringList>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

// A looked-up profile: sex, location and description of an account. The
// bot's own can be edited and saved; anyone else's is only shown.
class frmProfileLookup : public QDialog {
    Q_OBJECT
public:
    frmProfileLookup(int Index, const QString& ReadUser, const QStringList& Values,
                     QWidget* parent = nullptr);

    QString ReadUser() const { return m_user; }
    bool canSave() const;

private:
    void setReadUser(const QString& user);
    void save();

    int m_index;
    QString m_user;
    QLabel* lblUser;
    QLineEdit* Text1;
    QLineEdit* Text2;
    QPlainTextEdit* Text3;
    QPushButton* Command1;
};
