#pragma once

#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "gui/frmBot.h"
#include "platform/ChatDocument.h"

#include <QApplication>
#include <QMenu>
#include <gtest/gtest.h>
#include <memory>

// A fresh slot table and a shown main window over it; chat events reach a
// slot through its detached socket, as they would from the server.
class WindowFixture : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        // The program has started: loading a profile refreshes the menus.
        SlotTable::instance().IsLoaded = true;
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setFloodMode(0);
        settings.setTimeStamp(false);
        settings.setLocked(false);
        settings.setSidebar(true);
        settings.setWhisperPanel(false);
        window = std::make_unique<frmBot>();
        window->confirmClose = false;
        window->show();
        QApplication::processEvents();
    }
    void TearDown() override { window.reset(); }

    // A profile slot that is online in a channel.
    int onlineSlot(const QString& profile, const QString& channel = QStringLiteral("Lobby")) {
        const int slot = loadConnected(profile);
        Bots(slot).setOnline(true);
        Bots(slot).UniqueAccount = profile;
        event(slot, 7, {}, channel);
        return slot;
    }

    // A named part of a form or page.
    template <class Widget> static Widget* part(QWidget* parent, const char* name) {
        auto* widget = parent->findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    // The row of a menu that reads so, null when there is none.
    static QAction* row(const QMenu* menu, const QString& text) {
        for (QAction* action : menu->actions())
            if (action->text() == text) return action;
        return nullptr;
    }
    // Triggers the row of a menu that reads so; a missing row fails the test.
    static void pick(const QMenu* menu, const QString& text) {
        QAction* action = row(menu, text);
        ASSERT_NE(action, nullptr) << text.toStdString();
        action->trigger();
    }
    static void event(int slot, quint32 id, const QString& user, const QString& text = {},
                      quint32 flags = 0, quint32 ping = 20) {
        wsBNET(slot).simulateData(chatEventFrame(id, flags, ping, user, text));
    }

    std::unique_ptr<frmBot> window;
};
