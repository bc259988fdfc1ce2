#pragma once

#include "sandbox/AccountStore.h"
#include "sandbox/ChatHub.h"
#include "sandbox/ClanDesk.h"
#include "sandbox/FrameTrace.h"
#include "sandbox/FriendsDesk.h"
#include "sandbox/KeyRing.h"
#include "sandbox/ProfileValues.h"
#include "sandbox/SandboxOptions.h"
#include "sandbox/VersionOracle.h"

#include <QElapsedTimer>
#include <QHash>
#include <memory>

namespace sandbox {

// What all connections of one server share: its options, accounts, keys, the version check,
// chat, the trace and the clock.
class SandboxContext {
public:
    // Reads the files the options name; nothing, and the reason, when one is unusable.
    static std::unique_ptr<SandboxContext> create(const SandboxOptions& options, QString& error);
    explicit SandboxContext(const SandboxOptions& options);

    const SandboxOptions options;
    AccountStore store;
    KeyRing keys;
    VersionOracle oracle;
    ChatHub hub;
    ProfileValues profiles;
    ClanDesk clans;
    FriendsDesk friends;
    std::unique_ptr<FrameTrace> trace;

    // Milliseconds and microseconds since the server started.
    qint64 nowMs() const { return m_clock.elapsed(); }
    qint64 nowUs() const { return m_clock.nsecsElapsed() / 1000; }

    // Product keys held by logged-on sessions, for refusing a key in use: key to owner.
    QHash<QString, QString> keysInUse;

    int nextConnectionId() { return ++m_lastConnectionId; }

private:
    QElapsedTimer m_clock;
    int m_lastConnectionId = 0;
};

} // namespace sandbox
