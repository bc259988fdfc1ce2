#include "gui/ControlPanelGroups.h"

#include "commands/AliasGroupEditor.h"
#include "commands/AliasesAndGroups.h"
#include "gui/IconPainter.h"

#include <QColorDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

qint32 toStored(const QColor& color) {
    return qint32(quint32(color.red()) | quint32(color.green()) << 8 | quint32(color.blue()) << 16);
}

QLabel* note(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    return label;
}

} // namespace

ControlPanelGroups::ControlPanelGroups(QWidget* parent)
    : ControlPanelMemberList(
          {QStringLiteral("h3e"), QStringLiteral("Manage Groups:"), QStringLiteral("h3eGroup"),
           QStringLiteral("h3eMembers"), QStringLiteral("Create Group"),
           QStringLiteral("Please enter a name for the new Group"), QStringLiteral("Delete Group?"),
           QStringLiteral("Are you sure you want to delete this Group?")},
          parent) {
    m_prefix = new QLineEdit;
    m_prefix->setObjectName(QStringLiteral("h3ePrefix"));
    m_colorButton = new QPushButton;
    m_colorButton->setObjectName(QStringLiteral("h3eColor"));
    m_colorButton->setToolTip(QStringLiteral("Choose the colour of the group's members"));
    m_colorButton->setMinimumWidth(80);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Prefix:"), m_prefix);
    form->addRow(QStringLiteral("&Colour:"), m_colorButton);
    details()->addLayout(form);
    details()->addWidget(
        note(QStringLiteral("Should be a plural for readability purposes. e.g. \"Buddies\"")));
    details()->addWidget(note(QStringLiteral("Prefix should be what a single entity of the group "
                                             "is called. e.g. \"Buddies\" prefix would be "
                                             "\"Buddy\"")));
    connect(m_colorButton, &QPushButton::clicked, this, &ControlPanelGroups::pickColor);
}

void ControlPanelGroups::setColor(qint32 color) {
    m_color = color;
    if (color < 0) {
        m_colorButton->setStyleSheet({});
        m_colorButton->setText(QStringLiteral("None"));
        return;
    }
    m_colorButton->setText({});
    m_colorButton->setStyleSheet(
        QStringLiteral("background-color: %1;").arg(IconPainter::fromBgr(quint32(color)).name()));
}

void ControlPanelGroups::pickColor() {
    const QColor start = m_color < 0 ? QColor(Qt::white) : IconPainter::fromBgr(quint32(m_color));
    const QColor chosen = QColorDialog::getColor(start, this, QStringLiteral("Group Colour"),
                                                 QColorDialog::DontUseNativeDialog);
    if (chosen.isValid()) setColor(toStored(chosen));
}

QStringList ControlPanelGroups::names() const {
    return AliasGroupEditor::GroupNames();
}

QStringList ControlPanelGroups::members(const QString& name) const {
    return AliasGroupEditor::GroupMembers(name);
}

ManageOutcome ControlPanelGroups::create(const QString& name) {
    return AliasGroupEditor::NewGroup(name);
}

ManageOutcome ControlPanelGroups::remove(const QString& name) {
    return AliasGroupEditor::RemoveGroup(name);
}

ManageOutcome ControlPanelGroups::store(const QString& name, const QStringList& members) {
    return AliasGroupEditor::SaveGroup(name, members, m_color, m_prefix->text());
}

void ControlPanelGroups::showDetails(const QString& name) {
    const bool chosen = !name.isEmpty();
    m_prefix->setText(chosen ? GetGroupPrefix(name) : QString());
    setColor(chosen ? GetGroupColor(name) : -1);
    m_prefix->setEnabled(chosen);
    m_colorButton->setEnabled(chosen);
}
