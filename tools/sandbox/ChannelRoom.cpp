#include "sandbox/ChannelRoom.h"

#include "sandbox/ChatUser.h"

#include <algorithm>

namespace sandbox {

ChannelRoom::ChannelRoom(const QString& name, Kind kind, const QStringList& bans)
    : m_name(name), m_kind(kind), m_bans(bans) {}

quint32 ChannelRoom::flags() const {
    switch (m_kind) {
    case Kind::Product:
        return channelflag::Public | channelflag::ProductSpecific;
    case Kind::Void:
        return channelflag::Silent | channelflag::System;
    case Kind::Private:
        break;
    }
    return 0;
}

void ChannelRoom::remove(ChatUser* user) {
    const auto it = std::find(m_members.begin(), m_members.end(), user);
    if (it != m_members.end()) m_members.erase(it);
}

bool ChannelRoom::isBanned(const QString& name) const {
    return m_bans.contains(name, Qt::CaseInsensitive);
}

bool ChannelRoom::ban(const QString& name) {
    if (isBanned(name)) return false;
    m_bans.append(name);
    return true;
}

bool ChannelRoom::unban(const QString& name) {
    return m_bans.removeIf(
               [&](const QString& b) { return b.compare(name, Qt::CaseInsensitive) == 0; }) > 0;
}

} // namespace sandbox
