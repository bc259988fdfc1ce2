#include "gui/ControlPanelFonts.h"

#include "config/FileHandler.h"
#include "config/SettingsWrapper.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using S = SettingsWrapper;

// One font of the settings: its controls, its two settings, and whether a
// set that changes nothing is left out (a set of the chat font re-applies it
// to every view).
struct ControlPanelFonts::Group {
    const char* control;
    const char* caption;
    QString (S::*font)() const;
    void (S::*setFont)(const QString&);
    qint32 (S::*size)() const;
    void (S::*setSize)(qint32);
    bool onlyWhenChanged;
};

const QList<int>& ControlPanelFonts::Sizes() {
    static const QList<int> sizes{4, 6, 8, 10, 12, 14, 16};
    return sizes;
}

ControlPanelFonts::ControlPanelFonts(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Font Settings:"), parent) {
    const Group groups[] = {
        {"h2fChat", "Chat windows", &S::ChatFont, &S::setChatFont, &S::ChatSize, &S::setChatSize,
         true},
        {"h2fList", "User lists", &S::ListFont, &S::setListFont, &S::ListSize, &S::setListSize,
         false},
        {"h2fSend", "Input box", &S::TextFont, &S::setTextFont, &S::TextSize, &S::setTextSize,
         false},
    };
    for (const Group& group : groups)
        addGroup(group);
    body()->addStretch(1);
}

void ControlPanelFonts::addGroup(const Group& group) {
    const QString name = QLatin1String(group.control);
    auto* frame = new QGroupBox(QLatin1String(group.caption));
    auto* grid = new QGridLayout(frame);
    auto* family = new QComboBox;
    family->setObjectName(name);
    family->addItems(QFontDatabase::families());
    auto* size = new QComboBox;
    size->setObjectName(name + QStringLiteral("sz"));
    size->setEditable(true);
    auto* example = new QLabel;
    example->setObjectName(QStringLiteral("lblExample") + name.mid(3));
    example->setMinimumHeight(40);
    grid->addWidget(new QLabel(QStringLiteral("Font:")), 0, 0);
    grid->addWidget(family, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Size:")), 0, 2);
    grid->addWidget(size, 0, 3);
    grid->addWidget(example, 1, 0, 1, 4);
    grid->setColumnStretch(1, 1);
    body()->addWidget(frame);

    const auto showExample = [family, size, example] {
        QFont font(family->currentText());
        const int points = LeadingNumber(size->currentText());
        if (points > 0) font.setPointSize(points);
        example->setFont(font);
        example->setText(QStringLiteral("Example Text"));
    };
    connect(family, &QComboBox::currentTextChanged, this, showExample);
    connect(size, &QComboBox::currentTextChanged, this, showExample);

    SettingsWrapper& settings = SettingsWrapper::instance();
    bind(
        [&settings, group, family, size] {
            const QString stored = (settings.*group.font)();
            // A stored family this host lacks reads as the default, which the
            // host may lack as well: it is shown all the same.
            if (family->findText(stored, Qt::MatchFixedString) < 0) family->insertItem(0, stored);
            family->setCurrentIndex(family->findText(stored, Qt::MatchFixedString));
            size->clear();
            for (int points : Sizes())
                size->addItem(QString::number(points));
            size->setEditText(QString::number((settings.*group.size)()));
        },
        [&settings, group, family, size] {
            const QString chosen = family->currentText();
            const qint32 points = LeadingNumber(size->currentText());
            if (!group.onlyWhenChanged || chosen != (settings.*group.font)())
                (settings.*group.setFont)(chosen);
            if (!group.onlyWhenChanged || points != (settings.*group.size)())
                (settings.*group.setSize)(points);
            return true;
        });
}
