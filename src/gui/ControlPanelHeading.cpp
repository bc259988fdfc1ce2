#include "gui/ControlPanelHeading.h"

#include <QLabel>
#include <QVBoxLayout>

ControlPanelHeading::ControlPanelHeading(const QString& title, const QString& hint, QWidget* parent)
    : ControlPanelPage(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* heading = new QLabel(title);
    heading->setObjectName(QStringLiteral("lblHeading"));
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.5);
    heading->setFont(font);
    layout->addWidget(heading);
    layout->addWidget(new QLabel(hint));
    layout->addStretch(1);
}
