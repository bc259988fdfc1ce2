#include "gui/frmConfigManageIdles.h"

#include "gui/DialogParts.h"

#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

frmConfigManageIdles::frmConfigManageIdles(QWidget* parent) : frmConfigManage(parent) {
    setObjectName(QStringLiteral("frmConfigManageIdles"));
    m_expand = new QToolButton;
    m_expand->setObjectName(QStringLiteral("cmdExpand"));
    m_expand->setText(QStringLiteral("$"));
    m_expand->setToolTip(QStringLiteral("Show Variables"));
    connect(m_expand, &QToolButton::clicked, this, &frmConfigManageIdles::cmdExpand_Click);
    extras()->addWidget(m_expand);

    m_variables = new QLabel(QStringLiteral("$v - version string\n"
                                            "$mp3 - current mp3\n"
                                            "$sysup - current system uptime\n"
                                            "$botup - connection uptime\n"
                                            "$os - current operating system\n"
                                            "$ch - current channel\n"
                                            "$me - current account name"));
    m_variables->setObjectName(QStringLiteral("lblVariables"));
    m_variables->hide();
    layout()->addWidget(m_variables);

    Manager(OfferedList::IdleMessages);
    resize(480, 300);
}

void frmConfigManageIdles::cmdExpand_Click() {
    const bool show = m_variables->isHidden();
    m_variables->setVisible(show);
    m_expand->setToolTip(show ? QStringLiteral("Hide Variables")
                              : QStringLiteral("Show Variables"));
}

bool frmConfigManageIdles::acceptEntry(const QString& text) {
    if (!text.contains(u'\\')) return true;
    ShowWarning(this, QStringLiteral("String cannot contain a backslash."));
    return false;
}
