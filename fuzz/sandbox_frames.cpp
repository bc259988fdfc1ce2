// Whatever a client sends, in whatever pieces, the sandbox's sessions survive it. The first
// byte picks where the bytes land: a fresh chat connection, one logged on and sitting in a
// channel with a resident, one at the new system's logon, or a BNLS connection.
#include "logon/PasswordHash.h"
#include "logon/ProductKey.h"
#include "sandbox/BncsSession.h"
#include "sandbox/BnlsSession.h"
#include "sandbox/Products.h"
#include "sandbox/Resident.h"
#include "sandbox/SandboxContext.h"
#include "session/PacketWriter.h"

#include <cstddef>
#include <cstdint>
#include <memory>

using namespace sandbox;

namespace {

// Accounts and bans that the inputs make pile up; a fresh world now and then keeps every
// run as quick as the first.
constexpr int kRunsPerWorld = 2000;

struct World {
    World() : context(options()), resident(nullptr) {
        context.store.create(AccountStore::fromPassword("fuzzer", "pw", {}));
        resident.product = findProduct("STAR");
        resident.statstring = "RATS 0 0 0 0 0 0 0 0 RATS";
        context.hub.enter(resident, "resident");
        context.hub.join(resident, "Fuzz", ChatHub::JoinMode::Forced);
    }
    ~World() { context.hub.exit(resident); }
    static SandboxOptions options() {
        SandboxOptions o;
        o.versionResult = 0; // keys are checked, the version check is taken as passed
        o.flood.enabled = false;
        o.channelLimit = 8;
        return o;
    }
    SandboxContext context;
    Resident resident;
};

World& world() {
    static std::unique_ptr<World> current;
    static int runs = 0;
    if (!current || ++runs % kRunsPerWorld == 0) {
        current.reset();
        current = std::make_unique<World>();
    }
    return *current;
}

QByteArray frame(quint8 id, const PacketWriter& w) {
    return PacketWriter::frameBNCS(id, w.payload());
}

// Plays a genuine client up to the point the mode asks for.
void logOn(BncsSession& session, const QByteArray& sent, bool newSystem) {
    PacketWriter info;
    info.WriteDWORD(0);
    info.WriteDWORD(0x49583836);
    info.WriteVOID(newSystem ? "3RAW" : "RATS");
    for (int i = 0; i < 6; ++i)
        info.WriteDWORD(0);
    info.WriteSTRING(QByteArray());
    info.WriteSTRING(QByteArray());
    session.receive(QByteArray(1, '\x01') + frame(0x50, info));
    PacketReader reply;
    reply.HandleBuffer(sent);
    reply.Skip(8);
    const quint32 serverToken = reply.ReadDWORD();

    const quint32 clientToken = 7;
    const auto key =
        logon::ProductKey::decode(newSystem ? "V9FBR8JC4RJWCGPCMGPT9J2CND" : "7178075237576");
    const auto hash = key->hash(clientToken, serverToken);
    PacketWriter check;
    for (quint32 v :
         {clientToken, 0u, 0u, 1u, 0u, newSystem ? 26u : 13u, key->product(), key->val1(), 0u})
        check.WriteDWORD(v);
    check.WriteVOID(QByteArray(reinterpret_cast<const char*>(hash.data()), 20));
    check.WriteSTRING(QByteArray());
    check.WriteSTRING(QByteArray());
    session.receive(frame(0x51, check));
    if (newSystem) return;

    const auto proof = logon::doublePasswordHash("pw", clientToken, serverToken);
    PacketWriter logon;
    logon.WriteDWORD(clientToken);
    logon.WriteDWORD(serverToken);
    logon.WriteVOID(QByteArray(reinterpret_cast<const char*>(proof.data()), 20));
    logon.WriteSTRING(QByteArray("fuzzer"));
    PacketWriter enter;
    enter.WriteSTRING(QByteArray("fuzzer"));
    enter.WriteSTRING(QByteArray());
    PacketWriter join;
    join.WriteDWORD(2);
    join.WriteSTRING(QByteArray("Fuzz"));
    session.receive(frame(0x3A, logon) + frame(0x0A, enter) + frame(0x0C, join));
}

void feed(WireSession& session, const uint8_t* data, size_t size) {
    size_t pos = 0;
    while (pos < size && !session.isClosed()) {
        // Each piece's length is taken from the stream itself.
        const size_t piece = std::min<size_t>(size - pos, 1 + data[pos] % 96);
        session.receive(QByteArray(reinterpret_cast<const char*>(data + pos), qsizetype(piece)));
        pos += piece;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    World& w = world();
    QByteArray sent;
    bool closed = false;
    const WireLink link{[&](const QByteArray& bytes) {
                            if (sent.size() < 4096) sent += bytes;
                        },
                        [&] { closed = true; }};
    const int mode = data[0] % 4;
    if (mode == 3) {
        BnlsSession session(w.context, link);
        feed(session, data + 1, size - 1);
        return 0;
    }
    BncsSession session(w.context, link);
    if (mode > 0) {
        logOn(session, sent, mode == 2);
        if (closed || (mode == 1 && !session.inChat()))
            __builtin_trap(); // the genuine logon must pass, or the fuzzing misses chat
    }
    feed(session, data + 1, size - 1);
    return 0;
}
