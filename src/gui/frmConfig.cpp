#include "gui/frmConfig.h"

#include "chat/BotElement.h"
#include "gui/DialogParts.h"
#include "gui/IconPainter.h"
#include "gui/frmConfigManage.h"
#include "gui/frmConfigManageIdles.h"
#include "gui/frmConfigManageProfile.h"
#include "presentation/ChatWriter.h"
#include "session/ProductVersions.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

// The control panel's row of the databases.
constexpr int kDatabasesRow = 13;

QLabel* fieldLabel(const QString& text, QWidget* buddy, const QString& tip = {}) {
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    label->setToolTip(tip);
    return label;
}

// The profile of a slot, else of the one on screen.
QString openingProfile(int slot) {
    SlotTable& table = SlotTable::instance();
    if (slot > 0 && slot <= table.highestIndex() && Bots(slot).IsLoaded)
        return Bots(slot).Profile();
    const int active = table.CurrentIndex();
    return active > 0 ? Bots(active).Profile() : QString();
}

} // namespace

frmConfig::frmConfig(int slot, QWidget* parent) : QDialog(parent), m_slot(slot) {
    setObjectName(QStringLiteral("frmConfig"));
    setWindowTitle(QStringLiteral("Configuration"));
    setModal(true);
    auto* column = new QVBoxLayout(this);

    auto* top = new QHBoxLayout;
    cboProfiles = new QComboBox;
    cboProfiles->setObjectName(QStringLiteral("cboProfiles"));
    cboProfiles->setToolTip(QStringLiteral("The profile being edited"));
    cboProfiles->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(cboProfiles, &QComboBox::currentIndexChanged, this, &frmConfig::cboProfiles_Click);
    auto* manage = new QToolButton;
    manage->setObjectName(QStringLiteral("cmdProfileManage"));
    manage->setIcon(IconPainter::icon(IconPainter::ButtonAdd));
    manage->setText(QStringLiteral("Manage"));
    manage->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    manage->setToolTip(QStringLiteral("Create, clone, rename or delete profiles"));
    connect(manage, &QToolButton::clicked, this, &frmConfig::cmdProfileManage_Click);
    top->addWidget(fieldLabel(QStringLiteral("Profile:"), cboProfiles));
    top->addWidget(cboProfiles, 1);
    top->addWidget(manage);
    column->addLayout(top);

    m_pages = new QStackedWidget;
    column->addWidget(m_pages, 1);
    picBasic = buildBasicPage();
    picAdvanced = buildAdvancedPage();
    Picture1 = buildNotice();
    for (QWidget* page : {picBasic, picAdvanced, Picture1})
        m_pages->addWidget(page);
    column->addWidget(buildCommonRow());

    new QShortcut(QKeySequence::Save, this, this, &frmConfig::cmdProfileSave_Click);

    // The lists first, the profiles last, so that choosing a profile can fill
    // every field.
    cboProduct->addItems(ProfileSheet::ProductNames());
    cboProduct->setCurrentIndex(0);
    cboPing->addItems(ProfileSheet::PingNames());
    cboPing->setCurrentIndex(0);
    fillDatabases();
    for (OfferedList::Kind kind :
         {OfferedList::Accounts, OfferedList::Passwords, OfferedList::IdleMessages,
          OfferedList::Channels, OfferedList::Cdkeys1, OfferedList::Cdkeys2, OfferedList::Servers1,
          OfferedList::Servers2})
        fillOffered(kind);
    followProfiles();
    // Profiles made, renamed or removed elsewhere, such as on the terminal,
    // show here at once.
    connect(&SlotTable::instance(), &SlotTable::profilesChanged, this, &frmConfig::followProfiles);
}

// Pages -----------------------------------------------------------------------

QWidget* frmConfig::buildBasicPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("picBasic"));
    auto* grid = new QGridLayout(page);
    grid->setColumnStretch(1, 1);
    int row = 0;
    const auto offeredRow = [&](const QString& label, QComboBox* box, QToolButton* add,
                                QToolButton* manage) {
        grid->addWidget(fieldLabel(label, box), row, 0);
        grid->addWidget(box, row, 1);
        grid->addWidget(add, row, 2);
        grid->addWidget(manage, row, 3);
        ++row;
    };
    const auto textRow = [&](const QString& label, QWidget* field) {
        grid->addWidget(fieldLabel(label, field), row, 0);
        grid->addWidget(field, row, 1);
        ++row;
    };

    cboAccount = offeredBox(OfferedList::Accounts, QStringLiteral("cboAccount"));
    offeredRow(QStringLiteral("Account:"), cboAccount,
               addButton(OfferedList::Accounts, QStringLiteral("cmdAccountAdd")),
               manageButton(OfferedList::Accounts, QStringLiteral("cmdAccountMan")));
    cboPassword = offeredBox(OfferedList::Passwords, QStringLiteral("cboPassword"));
    cboPassword->lineEdit()->setEchoMode(QLineEdit::Password);
    offeredRow(QStringLiteral("Password:"), cboPassword,
               addButton(OfferedList::Passwords, QStringLiteral("cmdPasswordAdd")),
               manageButton(OfferedList::Passwords, QStringLiteral("cmdPasswordMan")));
    cboCdkey1 = offeredBox(OfferedList::Cdkeys1, QStringLiteral("cboCdkey1"));
    offeredRow(QStringLiteral("Cdkey:"), cboCdkey1,
               addButton(OfferedList::Cdkeys1, QStringLiteral("cmdCdkeyAdd1")),
               manageButton(OfferedList::Cdkeys1, QStringLiteral("cmdCdkeyMan1")));
    cboCdkey2 = offeredBox(OfferedList::Cdkeys2, QStringLiteral("cboCdkey2"));
    cmdCdkeyAdd2 = addButton(OfferedList::Cdkeys2, QStringLiteral("cmdCdkeyAdd2"));
    cmdCdkeyMan2 = manageButton(OfferedList::Cdkeys2, QStringLiteral("cmdCdkeyMan2"));
    offeredRow(QStringLiteral("Expansion Cdkey:"), cboCdkey2, cmdCdkeyAdd2, cmdCdkeyMan2);
    txtOwner = textField(QStringLiteral("txtOwner"));
    textRow(QStringLiteral("Owner of Cdkey:"), txtOwner);

    cboProduct = new QComboBox;
    cboProduct->setObjectName(QStringLiteral("cboProduct"));
    m_fields.push_back(cboProduct);
    connect(cboProduct, &QComboBox::currentIndexChanged, this, &frmConfig::cboProduct_Click);
    textRow(QStringLiteral("Product:"), cboProduct);
    txtVerbyte = textField(QStringLiteral("txtVerbyte"));
    auto* verbyteRow = new QHBoxLayout;
    verbyteRow->addWidget(txtVerbyte);
    auto* help = new QToolButton;
    help->setObjectName(QStringLiteral("Image2"));
    help->setText(QStringLiteral("?"));
    help->setToolTip(QStringLiteral("List of Version Bytes"));
    connect(help, &QToolButton::clicked, this, &frmConfig::Image2_Click);
    verbyteRow->addWidget(help);
    verbyteRow->addStretch(1);
    grid->addWidget(fieldLabel(QStringLiteral("Verbyte:"), txtVerbyte), row, 0);
    grid->addLayout(verbyteRow, row, 1);
    ++row;

    cboServer = offeredBox(OfferedList::Servers1, QStringLiteral("cboServer"));
    offeredRow(QStringLiteral("Battle.Net Server:"), cboServer,
               addButton(OfferedList::Servers1, QStringLiteral("cmdServerAdd1")),
               manageButton(OfferedList::Servers1, QStringLiteral("cmdServerMan1")));
    cboServerBNLS = offeredBox(OfferedList::Servers2, QStringLiteral("cboServerBNLS"));
    offeredRow(QStringLiteral("BNLS/JBLS Server:"), cboServerBNLS,
               addButton(OfferedList::Servers2, QStringLiteral("cmdServerAdd2")),
               manageButton(OfferedList::Servers2, QStringLiteral("cmdServerMan2")));
    cboChannel = offeredBox(OfferedList::Channels, QStringLiteral("cboChannel"));
    offeredRow(QStringLiteral("Channel:"), cboChannel,
               addButton(OfferedList::Channels, QStringLiteral("cmdChannel")),
               manageButton(OfferedList::Channels, QStringLiteral("cmdChannelsMan")));
    txtEmail = textField(QStringLiteral("txtEmail"));
    txtEmail->setToolTip(
        QStringLiteral("Registered to the account when the server asks for an address, and "
                       "offered by Bot > Request > Forgot Password"));
    textRow(QStringLiteral("Email Address:"), txtEmail);
    grid->setRowStretch(row, 1);
    return page;
}

QWidget* frmConfig::buildAdvancedPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("picAdvanced"));
    auto* grid = new QGridLayout(page);
    grid->setColumnStretch(1, 1);

    txtTrigger = textField(QStringLiteral("txtTrigger"));
    grid->addWidget(fieldLabel(QStringLiteral("Trigger:"), txtTrigger), 0, 0);
    grid->addWidget(txtTrigger, 0, 1);

    const QString idleTip = QStringLiteral("Leave blank to disable idle message.");
    cboIdleMsg = offeredBox(OfferedList::IdleMessages, QStringLiteral("cboIdleMsg"));
    cboIdleMsg->setToolTip(idleTip);
    grid->addWidget(fieldLabel(QStringLiteral("Idle Message:"), cboIdleMsg, idleTip), 1, 0);
    grid->addWidget(cboIdleMsg, 1, 1);
    grid->addWidget(manageButton(OfferedList::IdleMessages, QStringLiteral("cmdIdleMan")), 1, 2);

    txtIdleTime = textField(QStringLiteral("txtIdleTime"));
    txtIdleTime->setMaximumWidth(80);
    auto* idleRow = new QHBoxLayout;
    idleRow->addWidget(txtIdleTime);
    idleRow->addWidget(new QLabel(QStringLiteral("minutes. (0 to disable idle)")));
    idleRow->addStretch(1);
    grid->addWidget(fieldLabel(QStringLiteral("Idle Interval:"), txtIdleTime), 2, 0);
    grid->addLayout(idleRow, 2, 1);

    const QString dbTip = QStringLiteral("Select a database to associate with this profile.");
    cboDB = new QComboBox;
    cboDB->setObjectName(QStringLiteral("cboDB"));
    cboDB->setToolTip(dbTip);
    m_fields.push_back(cboDB);
    auto* dbManage = new QToolButton;
    dbManage->setObjectName(QStringLiteral("cmdDBMan"));
    dbManage->setText(QStringLiteral("..."));
    dbManage->setToolTip(QStringLiteral("Manage databases in the control panel"));
    m_fields.push_back(dbManage);
    connect(dbManage, &QToolButton::clicked, this, &frmConfig::cmdDBMan_Click);
    grid->addWidget(fieldLabel(QStringLiteral("Database:"), cboDB, dbTip), 3, 0);
    grid->addWidget(cboDB, 3, 1);
    grid->addWidget(dbManage, 3, 2);

    const QString pingTip = QStringLiteral("Spoof a fake ping.");
    cboPing = new QComboBox;
    cboPing->setObjectName(QStringLiteral("cboPing"));
    cboPing->setToolTip(pingTip);
    m_fields.push_back(cboPing);
    grid->addWidget(fieldLabel(QStringLiteral("Ping Spoofing:"), cboPing, pingTip), 4, 0);
    grid->addWidget(cboPing, 4, 1);

    chkLagplug = new QCheckBox(QStringLiteral("Lag plug"));
    chkLagplug->setObjectName(QStringLiteral("chkLagplug"));
    chkLagplug->setToolTip(
        QStringLiteral("Login using UDP plug (Only works on StarCraft/WarCraft II)"));
    m_fields.push_back(chkLagplug);
    grid->addWidget(chkLagplug, 5, 1);
    grid->setRowStretch(6, 1);
    return page;
}

QWidget* frmConfig::buildNotice() {
    auto* notice = new QLabel(
        QStringLiteral("<p><b>Bot has not been installed on this computer before</b></p>"
                       "<p>Please click the manage icon above to create a &quot;Configuration "
                       "Profile&quot;, a form will be displayed, type the name of the profile in "
                       "and click &quot;Add Profile&quot;.</p>"));
    notice->setObjectName(QStringLiteral("Picture1"));
    notice->setWordWrap(true);
    notice->setAlignment(Qt::AlignCenter);
    notice->setMargin(24);
    return notice;
}

QWidget* frmConfig::buildCommonRow() {
    auto* rowWidget = new QWidget;
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    lblAdvanced = DialogButton(QStringLiteral("More >>"), QStringLiteral("lblAdvanced"),
                               QStringLiteral("Trigger, idle message, database and ping"));
    lblBasic = DialogButton(QStringLiteral("<< Basic"), QStringLiteral("lblBasic"),
                            QStringLiteral("Account, keys, product, servers and channel"));
    for (QPushButton* link : {lblAdvanced, lblBasic}) {
        link->setFlat(true);
        m_fields.push_back(link);
        row->addWidget(link);
    }
    connect(lblAdvanced, &QPushButton::clicked, this, [this] { showAdvanced(true); });
    connect(lblBasic, &QPushButton::clicked, this, [this] { showAdvanced(false); });
    row->addStretch(1);

    QPushButton* load = DialogButton(QStringLiteral("Load"), QStringLiteral("lblLoad"),
                                     QStringLiteral("Load the profile into the main window"));
    QPushButton* apply = DialogButton(QStringLiteral("Apply"), QStringLiteral("lblApply"),
                                      QStringLiteral("Save changes and continue working"));
    cmdProfileSave = DialogButton(QStringLiteral("Save"), QStringLiteral("lblSave"),
                                  QStringLiteral("Save changes and close"));
    connect(load, &QPushButton::clicked, this, &frmConfig::Label25_Click);
    connect(apply, &QPushButton::clicked, this, &frmConfig::cmdProfileApply_Click);
    connect(cmdProfileSave, &QPushButton::clicked, this, &frmConfig::cmdProfileSave_Click);
    for (QPushButton* button : {load, apply, cmdProfileSave}) {
        m_fields.push_back(button);
        row->addWidget(button);
    }
    return rowWidget;
}

QComboBox* frmConfig::offeredBox(OfferedList::Kind kind, const QString& name) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->setEditable(true);
    // The list changes only through the add and manage buttons.
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setMinimumContentsLength(22);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_offered.push_back({kind, box});
    m_fields.push_back(box);
    return box;
}

QToolButton* frmConfig::addButton(OfferedList::Kind kind, const QString& name) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(IconPainter::icon(IconPainter::ButtonAdd));
    button->setToolTip(QStringLiteral("Add to the list"));
    m_fields.push_back(button);
    connect(button, &QToolButton::clicked, this, [this, kind] {
        for (const OfferedBox& offered : m_offered) {
            if (offered.kind != kind) continue;
            QString text = offered.box->currentText();
            if (text.isEmpty()) return;
            // Keys are kept as the game prints them.
            if (kind == OfferedList::Cdkeys1 || kind == OfferedList::Cdkeys2) text = text.toUpper();
            OfferedList::add(kind, text);
            fillOffered(kind);
        }
    });
    return button;
}

QToolButton* frmConfig::manageButton(OfferedList::Kind kind, const QString& name) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setText(QStringLiteral("..."));
    button->setToolTip(QStringLiteral("Manage the list"));
    m_fields.push_back(button);
    connect(button, &QToolButton::clicked, this, [this, kind] {
        frmConfigManage* manager = nullptr;
        if (kind == OfferedList::IdleMessages) {
            manager = new frmConfigManageIdles(this);
        } else {
            manager = new frmConfigManage(this);
            manager->Manager(kind);
        }
        manager->setAttribute(Qt::WA_DeleteOnClose);
        connect(manager, &QDialog::finished, this, [this, kind] { fillOffered(kind); });
        manager->open();
    });
    return button;
}

QLineEdit* frmConfig::textField(const QString& name) {
    auto* field = new QLineEdit;
    field->setObjectName(name);
    m_fields.push_back(field);
    return field;
}

// Filling --------------------------------------------------------------------

void frmConfig::fillOffered(OfferedList::Kind kind) {
    for (const OfferedBox& offered : m_offered) {
        if (offered.kind != kind) continue;
        const QStringList entries = OfferedList::entries(kind);
        // An emptied list leaves the box as it was.
        if (entries.isEmpty()) continue;
        const QString typed = offered.box->currentText();
        offered.box->clear();
        offered.box->addItems(entries);
        offered.box->setEditText(typed);
    }
}

void frmConfig::fillDatabases() {
    // Unlike the boxes one types into, a deleted database must not stay on
    // offer: a profile bound to it would answer nobody.
    const QStringList entries = OfferedList::entries(OfferedList::Databases);
    const QString chosen = cboDB->currentText();
    cboDB->clear();
    cboDB->addItems(entries);
    cboDB->setCurrentIndex(std::max(0, cboDB->findText(chosen, Qt::MatchFixedString)));
}

void frmConfig::fillProfiles(const QString& preferred) {
    const QString shown = cboProfiles->currentText();
    {
        const QSignalBlocker quiet(cboProfiles);
        cboProfiles->clear();
        cboProfiles->addItems(ProfileLifecycle::ListProfiles());
        int index = -1;
        for (const QString& wanted : {shown, preferred}) {
            if (index < 0 && !wanted.isEmpty())
                index = cboProfiles->findText(wanted, Qt::MatchFixedString);
        }
        if (index < 0 && cboProfiles->count() > 0) index = 0;
        cboProfiles->setCurrentIndex(index);
    }
    if (cboProfiles->count() == 0) {
        m_pages->setCurrentWidget(Picture1);
        return;
    }
    showAdvanced(m_advanced);
    // The profile on view keeps what was typed into it.
    if (shown.isEmpty() || cboProfiles->currentText() != shown) cboProfiles_Click();
}

void frmConfig::followProfiles() {
    fillProfiles(openingProfile(m_slot));
    DetermineEnabledState();
}

QStringList frmConfig::profiles() const {
    QStringList names;
    for (int i = 0; i < cboProfiles->count(); ++i)
        names << cboProfiles->itemText(i);
    return names;
}

// Showing and storing ----------------------------------------------------------

void frmConfig::cboProfiles_Click() {
    if (const std::optional<ProfileSheet> stored = ProfileSheet::read(cboProfiles->currentText()))
        showSheet(*stored);
}

void frmConfig::showSheet(const ProfileSheet& s) {
    cboAccount->setEditText(s.Account);
    cboPassword->setEditText(s.Password);
    cboCdkey1->setEditText(s.Cdkey1);
    cboCdkey2->setEditText(s.Cdkey2);
    {
        const QSignalBlocker quiet(cboProduct);
        cboProduct->setCurrentIndex(s.Product);
    }
    cboProduct_Click();
    txtVerbyte->setText(s.Verbyte);
    cboServer->setEditText(s.Server);
    cboServerBNLS->setEditText(s.ServerBNLS);
    cboChannel->setEditText(s.Channel);
    txtOwner->setText(s.Owner);
    txtEmail->setText(s.Email);
    txtTrigger->setText(s.Trigger);
    cboIdleMsg->setEditText(s.IdleMsg);
    txtIdleTime->setText(s.IdleTime);
    int database = s.Database.isEmpty() ? -1 : cboDB->findText(s.Database, Qt::MatchFixedString);
    if (database < 0 && cboDB->count() > 0) database = 0;
    cboDB->setCurrentIndex(database);
    cboPing->setCurrentIndex(s.PingSpoof);
    chkLagplug->setChecked(s.LagPlug);
}

ProfileSheet frmConfig::sheet() const {
    ProfileSheet s;
    s.Account = cboAccount->currentText();
    s.Password = cboPassword->currentText();
    s.Cdkey1 = cboCdkey1->currentText();
    s.Cdkey2 = cboCdkey2->currentText();
    s.Product = std::max(0, cboProduct->currentIndex());
    s.Verbyte = txtVerbyte->text();
    s.Server = cboServer->currentText();
    s.ServerBNLS = cboServerBNLS->currentText();
    s.Channel = cboChannel->currentText();
    s.Owner = txtOwner->text();
    s.Email = txtEmail->text();
    s.Trigger = txtTrigger->text();
    s.IdleMsg = cboIdleMsg->currentText();
    s.IdleTime = txtIdleTime->text();
    s.Database = cboDB->currentText();
    s.PingSpoof = std::max(0, cboPing->currentIndex());
    s.LagPlug = chkLagplug->isChecked();
    return s;
}

void frmConfig::cboProduct_Click() {
    const int index = cboProduct->currentIndex();
    txtVerbyte->setText(ProfileSheet::storedVerbyte(index));
    // Empty, the product's current byte goes out.
    txtVerbyte->setPlaceholderText(
        ProductVersions::Text(ProductVersions::Current(ProfileSheet::productCode(index))));
    applySecondKeyRule();
}

void frmConfig::applySecondKeyRule() {
    const bool second =
        ProfileSheet::hasSecondKey(cboProduct->currentIndex()) && cboProfiles->count() > 0;
    for (QWidget* control : std::initializer_list<QWidget*>{cboCdkey2, cmdCdkeyAdd2, cmdCdkeyMan2})
        control->setEnabled(second);
}

bool frmConfig::profileStored() const {
    return !ProfileLifecycle::FindProfile(cboProfiles->currentText()).isEmpty();
}

bool frmConfig::storeFields() {
    if (!profileStored()) return false;
    const QString name = cboProfiles->currentText();
    if (sheet().write(name)) return true;
    ShowWarning(this, QStringLiteral("Could not save the profile ") + name +
                          QStringLiteral(": the settings store did not take every value."));
    return false;
}

void frmConfig::cmdProfileApply_Click() {
    storeFields();
}

void frmConfig::cmdProfileSave_Click() {
    if (storeFields()) accept();
}

void frmConfig::DetermineEnabledState() {
    const bool any = cboProfiles->count() > 0;
    cboProfiles->setEnabled(any);
    for (QWidget* field : m_fields)
        field->setEnabled(any);
    if (!any) return;
    showAdvanced(m_advanced);
    applySecondKeyRule();
}

void frmConfig::showAdvanced(bool advanced) {
    m_advanced = advanced;
    if (cboProfiles->count() == 0) return;
    m_pages->setCurrentWidget(advanced ? picAdvanced : picBasic);
    lblAdvanced->setEnabled(!advanced);
    lblBasic->setEnabled(advanced);
}

// Commands ---------------------------------------------------------------------

void frmConfig::Label25_Click() {
    const QString name = cboProfiles->currentText();
    if (cboProfiles->count() == 0 || name.isEmpty()) return;
    SlotTable& table = SlotTable::instance();
    bool loaded = false;
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).IsLoaded && Bots(i).Profile().compare(name, Qt::CaseInsensitive) == 0) {
            WriteChat(0, Status::Error,
                      QStringLiteral("Cannot load profile (") + name +
                          QStringLiteral(") it is already loaded."));
            loaded = true;
        }
    }
    if (!loaded) table.LoadProfile(name);
}

void frmConfig::cmdProfileManage_Click() {
    auto* manager = new frmConfigManageProfile(this);
    manager->setAttribute(Qt::WA_DeleteOnClose);
    connect(manager, &QDialog::finished, this, [this] {
        followProfiles();
        SlotTable::instance().DisplayProfiles();
    });
    manager->open();
}

void frmConfig::cmdDBMan_Click() {
    Q_EMIT controlPanelRequested(kDatabasesRow);
    fillDatabases();
}

void frmConfig::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) fillDatabases();
}

void frmConfig::Image2_Click() {
    auto* box = new QMessageBox(
        QMessageBox::Information, QStringLiteral("Version Bytes"),
        QStringLiteral("The version bytes at the time of this release are:\n\n"
                       "StarCraft/BroodWar: ") +
            ProductVersions::Text(ProductVersions::Current(QStringLiteral("STAR"))) +
            QStringLiteral("\nDiablo II/Lord of Destruction: ") +
            ProductVersions::Text(ProductVersions::Current(QStringLiteral("D2DV"))) +
            QStringLiteral("\nWarCraft II: ") +
            ProductVersions::Text(ProductVersions::Current(QStringLiteral("W2BN"))) +
            QStringLiteral("\nWarCraft III/Frozen Throne: ") +
            ProductVersions::Text(ProductVersions::Current(QStringLiteral("WAR3"))) +
            QStringLiteral("\n\nLeft empty, a profile sends the byte of its "
                           "product, and asks BNLS for a newer one when the "
                           "server refuses it."),
        QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("verbyteBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
