#pragma once

#include "commands/BlocksAndFilters.h"
#include "common/SlotFixture.h"
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "presentation/Theme.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <ostream>

// Texts in failure messages as text, not as arrays of characters.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

// A fresh slot table, the default theme, no timestamps, escapes parsed, and
// none of the lists, aliases, groups or override files a test before left.
class ChatFixture : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        CurrentTheme() = ThemeRecord{};
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setLocked(false);
        settings.setTimeStamp(false);
        settings.setColorDisp(0);
        settings.setHideChars(true);
        settings.setLogging(false);
        for (const char* tree : {"Aliases", "Groups"})
            killTree(SettingsWrapper::RootKey() + QLatin1String(tree));
        for (const char* file :
             {"BlockedUsers.ini", "MessageFilters.ini", "Overrides.ini", "Profanity.ini"})
            QFile::remove(GetSettingsPath() + QLatin1String(file));
        QDir(GetSettingsPath() + QStringLiteral("Logs")).removeRecursively();
        LoadBlocks();
        LoadFilters();
    }

    static void killTree(const QString& key) {
        RegistryWrapper& store = RegistryWrapper::instance();
        QStringList names;
        if (store.EnumKeys(key, names) > 0) {
            for (const QString& name : names)
                killTree(key + u'\\' + name);
        }
        store.KillKey(key);
    }

    static void writeFile(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    // The colour of each character of a view, for checking what the passes did.
    static std::vector<CharFormat> formats(const ChatDocument& view) {
        std::vector<CharFormat> out;
        for (const TextRun& run : view.runs())
            out.insert(out.end(), size_t(run.text.size()), run.format);
        return out;
    }
};
