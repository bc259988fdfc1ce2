#pragma once

#include "logon/NlsServer.h"
#include "sandbox/AccountStore.h"
#include "sandbox/VersionOracle.h"
#include "session/PacketReader.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace sandbox {

class SandboxContext;
struct Product;

// The logon of one BNCS connection, from the client's identification to the accepted
// password: the version check and product keys (0x50, 0x51), the old system (0x3A, 0x3D,
// 0x31), the new one (0x52 to 0x56) and e-mail registration (0x59). Each handler answers
// through the reply function and returns false for a frame the client had no business
// sending at this point, which costs it the connection.
class BncsLogon {
public:
    enum class Step { Start, Identified, Authorized, LoggedOn };
    using Reply = std::function<void(quint8 id, const QByteArray& payload)>;

    BncsLogon(SandboxContext& context, Reply reply);
    ~BncsLogon();

    Step step() const { return m_step; }
    const Product* product() const { return m_product; }
    // The account as it was created, once logged on.
    const QString& account() const { return m_account; }

    bool authInfo(PacketReader& r);
    bool authCheck(PacketReader& r);
    bool oldLogon(PacketReader& r);
    bool oldCreate(PacketReader& r);
    bool oldChangePassword(PacketReader& r);
    bool newCreate(PacketReader& r);
    bool newLogon(PacketReader& r);
    bool newProof(PacketReader& r);
    bool newChangePassword(PacketReader& r);
    bool newChangeProof(PacketReader& r);
    bool registerEmail(PacketReader& r);
    bool changeEmail(PacketReader& r);
    bool forgotPassword(PacketReader& r);

    // The status an account creation answers with for a name that is too short, too long or
    // of the wrong characters, holds a banned word, or is taken.
    struct Refusals {
        quint32 tooShort, invalid, banned, exists;
    };

private:
    quint32 create(const AccountRecord& account, const Refusals& refusals);
    bool oldSystemAllowed() const;
    bool newSystemAllowed() const;
    quint32 checkVersion(quint32 version, quint32 checksum);
    quint32 checkKeys(PacketReader& r, quint32 clientToken, QString& owner);
    void loggedOn(const QString& account);
    bool challenge(quint8 id, PacketReader& r, std::optional<logon::NlsServerSession>& session);
    void proofReply(quint8 id, quint32 status, const logon::Digest* serverProof, bool withText);

    SandboxContext& m_context;
    Reply m_reply;
    Step m_step = Step::Start;
    const Product* m_product = nullptr;
    quint32 m_serverToken = 0;
    quint32 m_versionByte = 0; // as 0x50 named it
    VersionOracle::Challenge m_challenge;
    QString m_account;
    QString m_proofAccount; // whose proof exchange is under way
    std::optional<logon::NlsServerSession> m_logonProof;
    std::optional<logon::NlsServerSession> m_changeProof;
    QStringList m_heldKeys;
};

} // namespace sandbox
