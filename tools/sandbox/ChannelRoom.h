#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace sandbox {

class ChatUser;

// One channel: who is in it, in order of arrival, and its rules. The hub moves people in and
// out and tells everyone; the room only keeps the state.
class ChannelRoom {
public:
    enum class Kind {
        Private, // the first to enter holds the operator's flag
        Product, // a product's public home: no operators, other products kept out
        Void,    // nobody sees anybody
    };

    ChannelRoom(const QString& name, Kind kind, const QStringList& bans);

    const QString& name() const { return m_name; }
    Kind kind() const { return m_kind; }
    quint32 flags() const;

    const std::vector<ChatUser*>& members() const { return m_members; }
    bool isEmpty() const { return m_members.empty(); }
    int size() const { return int(m_members.size()); }
    void add(ChatUser* user) { m_members.push_back(user); }
    void remove(ChatUser* user);

    bool isBanned(const QString& name) const;
    // False when nothing changed.
    bool ban(const QString& name);
    bool unban(const QString& name);
    const QStringList& bans() const { return m_bans; }

    // Who takes the operator's flag when the operator leaves.
    QString heir;

private:
    QString m_name;
    Kind m_kind;
    std::vector<ChatUser*> m_members;
    QStringList m_bans;
};

} // namespace sandbox
