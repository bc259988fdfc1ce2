#pragma once

#include <QByteArray>
#include <QtGlobal>

// Working values of one slot's logon, kept between the packets of the
// exchange. Byte strings hold wire bytes as they came.
struct LogonRecord {
    QByteArray ClientKey;   // A of the new logon system, 32 bytes
    QByteArray ServerKey;   // B of the logon
    QByteArray Salt;        // of the logon or the password change
    QByteArray ServerProof; // M2 as received
    QByteArray ClientProof; // M1, 20 bytes
    quint32 KeyDecoder = 0;
    quint32 KeyHashLength = 0;
    QByteArray KeyHash;
    quint32 NlsHandle = 0; // 0 while there is no new-system session
    quint32 LogonType = 0;
    quint32 NlsOldHandle = 0;
    quint32 ClientToken = 0;
    quint32 ServerToken = 0;
    QByteArray ChangeServerKey;
    QByteArray MpqName;
    QByteArray MpqTime; // 8 bytes of the server's announcement
    qint32 MpqNumber = 0;
    QByteArray ChecksumFormula;
    QByteArray ChangeNewPassword;
    quint32 NlsNewHandle = 0;
    QByteArray ChangeProofData; // 84 bytes
    // The 0x51 answer (0x100 or 0x101) to a version byte while BNLS is asked
    // for the current one; 0 otherwise.
    quint32 VersionRefusal = 0;
    // The current byte was learned from BNLS: the next refusal stands. Kept
    // across the one more try it leads to.
    bool VerbyteLearned = false;
};
