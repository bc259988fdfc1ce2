#pragma once

#include "chat/BotElement.h"
#include "platform/SocketControl.h"
#include "session/SlotTable.h"

#include <gtest/gtest.h>

// A fresh slot table for each test, with sockets that never touch the network.
class SlotFixture : public ::testing::Test {
protected:
    void SetUp() override { SlotTable::reset(); }

    // Loads a profile and connects its sockets in detached mode.
    int loadConnected(const QString& profile) {
        const int i = SlotTable::instance().LoadProfile(profile);
        for (SocketControl* s : {&wsBNET(i), &wsBNLS(i)}) {
            s->setDetached(true);
            s->Connect(QStringLiteral("localhost"), 1);
            s->simulateConnected();
        }
        return i;
    }
};
