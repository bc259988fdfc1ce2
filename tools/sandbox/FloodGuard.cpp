#include "sandbox/FloodGuard.h"

#include <algorithm>

namespace sandbox {

qint64 FloodGuard::debt(qint64 nowMs) const {
    return std::max<qint64>(0, m_debt - (nowMs - m_lastMs));
}

bool FloodGuard::admit(qint64 nowMs, int bytes) {
    if (!m_budget.enabled) return true;
    const qint64 owed = debt(nowMs);
    if (owed > m_budget.allowance) return false;
    m_debt = owed + m_budget.base + qint64(m_budget.perByte) * std::max(0, bytes);
    m_lastMs = nowMs;
    return true;
}

} // namespace sandbox
