#include "gui/SocialForms.h"

#include "chat/BotElement.h"
#include "gui/frmProfileLookup.h"
#include "gui/frmShowInvite.h"
#include "session/SlotTable.h"
#include "social/ClanNotices.h"

#include <QInputDialog>

void ConnectSocialForms(QWidget* window) {
    QObject::connect(&SlotTable::instance(), &SlotTable::profileReceived, window,
                     [window](int index, const QString& account, const QStringList& values) {
                         (new frmProfileLookup(index, account, values, window))->show();
                     });
    QObject::connect(&ClanNotices::instance(), &ClanNotices::invitation, window,
                     [window](const ClanInvitation& invitation) {
                         (new frmShowInvite(invitation, window))->show();
                     });
}

void LookupProfile(QWidget* window) {
    const int slot = SlotTable::instance().CurrentIndex();
    if (slot <= 0) return;
    const QString account = QInputDialog::getText(window, QStringLiteral("Enter account..."),
                                                  QStringLiteral("Enter profile to lookup:"));
    if (account.isEmpty()) return;
    Bots(slot).Connection.Output_ProfileRequest(slot, account);
}
