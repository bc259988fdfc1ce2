#include "sandbox/ChatUser.h"

#include "sandbox/Products.h"

namespace sandbox {

ChatUser::~ChatUser() = default;

QString ChatUser::nameFor(const ChatUser& viewer) const {
    if (viewer.product && viewer.product->starNames()) return character + QLatin1Char('*') + m_name;
    return m_name;
}

quint32 ChatUser::flagsFor(const ChatUser& viewer) const {
    return viewer.ignores(*this) ? flags | userflag::Squelched : flags;
}

bool ChatUser::ignores(const ChatUser& other) const {
    return !ignoring.isEmpty() && ignoring.contains(other.m_name.toLower());
}

} // namespace sandbox
