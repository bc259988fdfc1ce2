#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QStackedWidget;

// The founding of a clan for one profile, in two steps: a free tag and its
// candidates, then the invitation of at least nine of them. One form a
// profile, made at first use; the replies reach the form of their profile.
class frmClanCreator : public QDialog {
    Q_OBJECT
public:
    // The profile's form (its objCC), made when it has none yet.
    static frmClanCreator* forSlot(int Index, QWidget* parent);
    // The fewest candidates a clan is founded with.
    static constexpr int kFewestCandidates = 9;

    void Step1();
    void Step2();
    void Command1();
    void Command2();

private:
    frmClanCreator(int Index, QWidget* parent);
    QWidget* makeStep1();
    QWidget* makeStep2();
    void candidatesFound(int Index, int Result, const QStringList& Names);
    void foundingAnswered(int Index, int Result);
    static void setResult(QLabel* label, const QString& text, quint32 colour);

    int m_index;
    QStackedWidget* m_steps;
    QLineEdit* Text1;
    QLabel* Step1Result;
    QLineEdit* Text2;
    QListWidget* lvPotential;
    QLabel* Step2Result;
};
