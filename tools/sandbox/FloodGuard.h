#pragma once

#include "sandbox/SandboxOptions.h"

#include <QtGlobal>

namespace sandbox {

// The chat flood budget of one client (see FloodBudget): every line adds its cost to what the
// client owes, and the debt drains by one per millisecond.
class FloodGuard {
public:
    explicit FloodGuard(const FloodBudget& budget) : m_budget(budget) {}

    // A line of `bytes` bytes arrives at `nowMs`. False when the client was already over its
    // allowance: it is flooding.
    bool admit(qint64 nowMs, int bytes);
    // What the client owes at `nowMs`, in milliseconds.
    qint64 debt(qint64 nowMs) const;

private:
    FloodBudget m_budget;
    qint64 m_debt = 0;
    qint64 m_lastMs = 0;
};

} // namespace sandbox
