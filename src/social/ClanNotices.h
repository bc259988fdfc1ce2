#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

// An invitation that came in: Kind 1 to help found a clan (0x72), Kind 2 to
// join one that exists (0x79). The two DWORDs are only kept for the answer.
struct ClanInvitation {
    int Index = 0;
    int Kind = 0;
    quint32 Value1 = 0;
    quint32 Value2 = 0;
    QString ClanName;
    QString Inviter;
    quint32 Tick = 0; // when it came

    bool operator==(const ClanInvitation&) const = default;
};

// What the clan protocol tells whoever shows it: invitations to answer and
// the steps of founding a clan. Without a window the invitations wait here
// for a typed answer until the server's time-out would have declined them.
class ClanNotices : public QObject {
    Q_OBJECT
public:
    static ClanNotices& instance();
    // Seconds an invitation may wait for its answer.
    static constexpr int kAnswerSeconds = 39;
    // What an invitation of a kind asks, without a full stop.
    static QString invitationText(int Kind);

    // The server's answer to a step of founding, as the creator shows it.
    struct Outcome {
        quint8 packet; // 0x70 the tag and its candidates, 0x71 the invitations
        int result;
        const char* text;
        quint32 colour;
    };
    // Null for a result that changes nothing.
    static const Outcome* outcome(quint8 PacketID, int Result);

    void invitationReceived(const ClanInvitation& Invitation);
    // Sends the answer, 6 to accept and 4 to decline, and forgets it.
    void answer(const ClanInvitation& Invitation, bool Accept);
    // No answer is sent any more; the server declines by itself.
    void forget(const ClanInvitation& Invitation);
    // Answers the slot's oldest invitation still in time; false if none waits.
    bool answerOldest(int Index, bool Accept);

    // A founding step typed on the terminal: its answer is written as lines.
    void foundingTyped(int Index, const QString& Tag) { m_typed.insert(Index, Tag); }
    // The tag of the slot's typed step, forgotten; empty when none was typed.
    QString takeTypedFounding(int Index) { return m_typed.take(Index); }

Q_SIGNALS:
    void invitation(const ClanInvitation& Invitation);
    // The reply to a search for candidates (0x70) and to the invitations of a
    // founding (0x71).
    void candidatesFound(int Index, int Result, const QStringList& Names);
    void foundingAnswered(int Index, int Result);
    // The slot's own rank in its clan changed.
    void standingChanged(int Index);

private:
    void dropExpired();
    std::vector<ClanInvitation> m_pending;
    QHash<int, QString> m_typed;
};
