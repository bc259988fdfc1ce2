#pragma once

#include "config/OfferedList.h"
#include "config/ProfileSheet.h"

#include <QDialog>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QToolButton;

// The profile form: one Battle.net identity's account, keys, product,
// servers, channel and chat habits, edited straight in the store. A slot
// that has the profile loaded sees each applied change at its next read.
// Its boxes offer what earlier sessions kept in the lists of offered values.
class frmConfig : public QDialog {
    Q_OBJECT
public:
    // Opens on the profile of that slot when it has one.
    explicit frmConfig(int slot = 0, QWidget* parent = nullptr);

    // Without a profile, every field and cboProfiles itself are off; with
    // one they are on, the second key's only for an expansion.
    void DetermineEnabledState();
    // Writes every field to the chosen profile.
    void cmdProfileApply_Click();
    // The same, then closes once the profile is stored.
    void cmdProfileSave_Click();
    // Loads the chosen profile into a slot, unless one has it already.
    void Label25_Click();
    void cmdProfileManage_Click();
    // Opens the control panel on its databases; then offers its databases
    // again.
    void cmdDBMan_Click();
    // The box of the version bytes.
    void Image2_Click();
    // The version byte last kept for the product, and the second key's
    // controls on only for an expansion.
    void cboProduct_Click();
    // Shows the stored values of the chosen profile.
    void cboProfiles_Click();
    // "More >>" and "<< Basic".
    void showAdvanced(bool advanced);

    // What the fields hold now, as it would be stored.
    ProfileSheet sheet() const;
    // The profiles it offers, in order.
    QStringList profiles() const;

Q_SIGNALS:
    // The control panel should open on that row of its list.
    void controlPanelRequested(int row);

protected:
    // Back from the control panel, or from anywhere a database may have been
    // made: the databases are offered afresh.
    void changeEvent(QEvent* event) override;

private:
    struct OfferedBox {
        OfferedList::Kind kind;
        QComboBox* box;
    };
    QWidget* buildBasicPage();
    QWidget* buildAdvancedPage();
    QWidget* buildNotice();
    QWidget* buildCommonRow();
    QComboBox* offeredBox(OfferedList::Kind kind, const QString& name);
    QToolButton* addButton(OfferedList::Kind kind, const QString& name);
    QToolButton* manageButton(OfferedList::Kind kind, const QString& name);
    QLineEdit* textField(const QString& name);
    void fillOffered(OfferedList::Kind kind);
    void fillDatabases();
    void fillProfiles(const QString& preferred);
    // The profiles again, on the same one if it is still there, else on the
    // slot's.
    void followProfiles();
    void showSheet(const ProfileSheet& sheet);
    bool profileStored() const;
    // Apply's work; false, after saying why when it was the store, when
    // nothing or not everything was stored.
    bool storeFields();
    void applySecondKeyRule();

    int m_slot;
    QComboBox* cboProfiles = nullptr;
    QComboBox* cboAccount = nullptr;
    QComboBox* cboPassword = nullptr;
    QComboBox* cboCdkey1 = nullptr;
    QComboBox* cboCdkey2 = nullptr;
    QComboBox* cboProduct = nullptr;
    QLineEdit* txtVerbyte = nullptr;
    QComboBox* cboServer = nullptr;
    QComboBox* cboServerBNLS = nullptr;
    QComboBox* cboChannel = nullptr;
    QLineEdit* txtOwner = nullptr;
    QLineEdit* txtEmail = nullptr;
    QLineEdit* txtTrigger = nullptr;
    QComboBox* cboIdleMsg = nullptr;
    QLineEdit* txtIdleTime = nullptr;
    QComboBox* cboDB = nullptr;
    QComboBox* cboPing = nullptr;
    QCheckBox* chkLagplug = nullptr;
    QToolButton* cmdCdkeyAdd2 = nullptr;
    QToolButton* cmdCdkeyMan2 = nullptr;
    QPushButton* cmdProfileSave = nullptr;
    QPushButton* lblAdvanced = nullptr;
    QPushButton* lblBasic = nullptr;
    QStackedWidget* m_pages = nullptr;
    QWidget* picBasic = nullptr;
    QWidget* picAdvanced = nullptr;
    QWidget* Picture1 = nullptr;
    bool m_advanced = false;
    std::vector<OfferedBox> m_offered;
    // Everything DetermineEnabledState turns off without a profile.
    std::vector<QWidget*> m_fields;
};
