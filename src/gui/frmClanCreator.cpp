#include "gui/frmClanCreator.h"

#include "chat/BotElement.h"
#include "session/SlotTable.h"
#include "social/ClanNotices.h"
#include "social/ClanPacket.h"

#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

QHash<int, QPointer<frmClanCreator>>& forms() {
    static QHash<int, QPointer<frmClanCreator>> byslot;
    return byslot;
}

// A label that acts like its step's button when clicked.
QLabel* clickable(const QString& text, QObject* owner, std::function<void()> action) {
    auto* label = new QLabel(QStringLiteral("<a href=\"#\">") + text + QStringLiteral("</a>"));
    QObject::connect(label, &QLabel::linkActivated, owner, [action] { action(); });
    return label;
}

} // namespace

frmClanCreator* frmClanCreator::forSlot(int Index, QWidget* parent) {
    QPointer<frmClanCreator>& form = forms()[Index];
    if (!form) form = new frmClanCreator(Index, parent);
    return form;
}

frmClanCreator::frmClanCreator(int Index, QWidget* parent) : QDialog(parent), m_index(Index) {
    setObjectName(QStringLiteral("frmClanCreator"));
    setWindowTitle(Bots(Index).Profile() + QStringLiteral(" - Create new clan"));
    m_steps = new QStackedWidget;
    m_steps->addWidget(makeStep1());
    m_steps->addWidget(makeStep2());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_steps);
    resize(340, 380);
    ClanNotices& notices = ClanNotices::instance();
    connect(&notices, &ClanNotices::candidatesFound, this, &frmClanCreator::candidatesFound);
    connect(&notices, &ClanNotices::foundingAnswered, this, &frmClanCreator::foundingAnswered);
    Step1();
}

QWidget* frmClanCreator::makeStep1() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("picStep1"));
    Text1 = new QLineEdit;
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->setPlaceholderText(QStringLiteral("Clan tag, 2 to 4 characters"));
    connect(Text1, &QLineEdit::returnPressed, this, &frmClanCreator::Command1);
    auto* check = new QPushButton(QStringLiteral("&Check availability"));
    check->setObjectName(QStringLiteral("Command1"));
    connect(check, &QPushButton::clicked, this, &frmClanCreator::Command1);
    Step1Result = new QLabel;
    Step1Result->setObjectName(QStringLiteral("Step1Result"));
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(new QLabel(QStringLiteral("Step 1: choose the clan's tag.")));
    layout->addWidget(Text1);
    layout->addWidget(check);
    QLabel* lblStep1 = clickable(QStringLiteral("Find candidates"), this, [this] { Command1(); });
    lblStep1->setObjectName(QStringLiteral("lblStep1"));
    layout->addWidget(lblStep1);
    layout->addWidget(Step1Result);
    layout->addStretch();
    return page;
}

QWidget* frmClanCreator::makeStep2() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("picStep2"));
    Text2 = new QLineEdit;
    Text2->setObjectName(QStringLiteral("Text2"));
    Text2->setPlaceholderText(QStringLiteral("Clan name"));
    lvPotential = new QListWidget;
    lvPotential->setObjectName(QStringLiteral("lvPotential"));
    auto* invite = new QPushButton(QStringLiteral("&Invite candidates"));
    invite->setObjectName(QStringLiteral("Command2"));
    connect(invite, &QPushButton::clicked, this, &frmClanCreator::Command2);
    Step2Result = new QLabel;
    Step2Result->setObjectName(QStringLiteral("Step2Result"));
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(new QLabel(QStringLiteral("Step 2: name the clan and tick at least 9.")));
    layout->addWidget(Text2);
    layout->addWidget(lvPotential, 1);
    layout->addWidget(invite);
    QLabel* lblStep2 =
        clickable(QStringLiteral("Send the invitations"), this, [this] { Command2(); });
    lblStep2->setObjectName(QStringLiteral("lblStep2"));
    layout->addWidget(lblStep2);
    layout->addWidget(Step2Result);
    // Back to the tag, to look for candidates again.
    QLabel* back = clickable(QStringLiteral("Search again"), this, [this] { Step1(); });
    back->setObjectName(QStringLiteral("lblSearchAgain"));
    layout->addWidget(back);
    return page;
}

void frmClanCreator::Step1() {
    m_steps->setCurrentIndex(0);
}

void frmClanCreator::Step2() {
    m_steps->setCurrentIndex(1);
}

void frmClanCreator::setResult(QLabel* label, const QString& text, quint32 colour) {
    // Colours are red in the low byte, and 0 means white.
    if (colour == 0) colour = 0xFFFFFF;
    label->setText(text);
    label->setStyleSheet(QStringLiteral("color: rgb(%1, %2, %3);")
                             .arg(colour & 0xFF)
                             .arg((colour >> 8) & 0xFF)
                             .arg((colour >> 16) & 0xFF));
}

void frmClanCreator::Command1() {
    if (Text1->text().size() > 1) {
        setResult(Step1Result, QStringLiteral("Checking availability.."), 0);
        ClanPacket::Output_FindCandidates(m_index, Text1->text());
    }
    Step1();
}

void frmClanCreator::Command2() {
    QStringList ticked;
    for (int row = 0; row < lvPotential->count(); ++row)
        if (lvPotential->item(row)->checkState() == Qt::Checked)
            ticked << lvPotential->item(row)->text();
    if (ticked.size() < kFewestCandidates) {
        QMessageBox::warning(
            this, windowTitle(),
            QStringLiteral("You must check ATLEAST 9 candidates to invite to the clan!"));
        return;
    }
    ClanPacket::Output_InviteMultiple(m_index, Text2->text(), Text1->text(), ticked);
    setResult(Step2Result, QStringLiteral("Inviting candidates.."), 0);
}

void frmClanCreator::candidatesFound(int Index, int Result, const QStringList& Names) {
    if (Index != m_index) return;
    const ClanNotices::Outcome* o = ClanNotices::outcome(0x70, Result);
    if (!o) return;
    setResult(Step1Result, QLatin1String(o->text), o->colour);
    if (Result != 0) return;
    lvPotential->clear();
    for (const QString& name : Names) {
        auto* item = new QListWidgetItem(name, lvPotential);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
    Step2();
}

void frmClanCreator::foundingAnswered(int Index, int Result) {
    if (Index != m_index) return;
    if (const ClanNotices::Outcome* o = ClanNotices::outcome(0x71, Result))
        setResult(Step2Result, QLatin1String(o->text), o->colour);
}
