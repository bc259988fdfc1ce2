#pragma once

#include "WindowFixture.h"
#include "commands/DatabaseManager.h"
#include "config/OfferedList.h"
#include "config/RegistryWrapper.h"
#include "gui/frmConfig.h"
#include "session/ProfileLifecycle.h"

#include <QAbstractButton>
#include <QMessageBox>

// The main window over a store without profiles and with empty lists of
// offered values.
class ProfileFixture : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        for (const QString& name : ProfileLifecycle::ListProfiles())
            ProfileLifecycle::DeleteProfile(name);
        for (const QString& database : DatabaseManager::ListDatabases())
            DatabaseManager::DeleteDatabase(database);
        for (int kind = OfferedList::Accounts; kind < OfferedList::Databases; ++kind) {
            for (const QString& entry : OfferedList::entries(OfferedList::Kind(kind)))
                OfferedList::remove(OfferedList::Kind(kind), entry);
        }
        RegistryWrapper::instance().KillKey(SettingsWrapper::RootKey() +
                                            QStringLiteral("Verbytes"));
    }

    // The text of the warning shown over a dialog, which is then closed;
    // empty when there is none.
    static QString takeWarning(QWidget* over) {
        QApplication::processEvents();
        auto* box = over->findChild<QMessageBox*>(QStringLiteral("warningBox"));
        if (!box || !box->isVisible()) return {};
        const QString text = box->text();
        delete box;
        return text;
    }
    static QString stored(const QString& profile, const char* value) {
        return RegistryWrapper::instance().ReadSTRING(ProfileLifecycle::ProfilesKey() + profile,
                                                      QLatin1String(value), QStringLiteral("?"));
    }
    static qint32 storedNumber(const QString& profile, const char* value) {
        return RegistryWrapper::instance().ReadDWORD(ProfileLifecycle::ProfilesKey() + profile,
                                                     QLatin1String(value), -1);
    }
};
