#pragma once

#include "chat/BotElement.h"
#include "platform/SocketControl.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

#include <gtest/gtest.h>

// A fresh slot table for each test, with sockets that never touch the network.
class SlotFixture : public ::testing::Test {
protected:
    void SetUp() override { SlotTable::reset(); }

    // Loads a profile and puts its sockets, detached, in the connected state
    // without running the connect events.
    int loadConnected(const QString& profile) {
        const int i = SlotTable::instance().LoadProfile(profile);
        wsBNET(i).simulateQuietConnection();
        wsBNLS(i).simulateQuietConnection();
        return i;
    }

    // A chat event (SID_CHATEVENT) as the server frames it.
    static QByteArray chatEventFrame(quint32 id, quint32 flags, quint32 ping, const QString& user,
                                     const QString& text) {
        PacketWriter w;
        w.WriteDWORD(id);
        w.WriteDWORD(flags);
        w.WriteDWORD(ping);
        w.WriteVOID(QByteArray(12, '\0'));
        w.WriteSTRING(user);
        w.WriteSTRING(text);
        return PacketWriter::frameBNCS(0x0F, w.payload());
    }
};
