#pragma once

#include "chat/BotElement.h"
#include "platform/SocketControl.h"
#include "session/SlotTable.h"

#include <QSignalBlocker>

#include <gtest/gtest.h>

// A fresh slot table for each test, with sockets that never touch the network.
class SlotFixture : public ::testing::Test {
protected:
    void SetUp() override { SlotTable::reset(); }

    // Loads a profile and puts its sockets, detached, in the connected state
    // without running the connect events.
    int loadConnected(const QString& profile) {
        const int i = SlotTable::instance().LoadProfile(profile);
        for (SocketControl* s : {&wsBNET(i), &wsBNLS(i)}) {
            s->setDetached(true);
            s->Connect(QStringLiteral("localhost"), 1);
            const QSignalBlocker quiet(s);
            s->simulateConnected();
        }
        return i;
    }
};
