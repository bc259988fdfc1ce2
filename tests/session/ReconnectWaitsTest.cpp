#include "session/ReconnectPlan.h"

#include <gtest/gtest.h>

// Each drop doubles the wait up to ten minutes, with up to a fifth more on top;
// only a session that stayed a minute in chat starts again from the first.
TEST(ReconnectWaits, GrowWithEachDropAndStartAfreshOnlyAfterASteadySession) {
    ReconnectPlan plan;
    quint32 now = 0;
    const auto expectWait = [&](quint32 base) {
        const quint32 wait = plan.arm(now);
        EXPECT_GE(wait, base);
        EXPECT_LE(wait, base + base / 5);
        now += wait;
    };
    for (quint32 base : {15000u, 30000u, 60000u, 120000u, 240000u, 480000u, 600000u, 600000u})
        expectWait(base);
    plan.reachedChat(now);
    now += ReconnectPlan::kSteadySession - 1;
    expectWait(600000u);
    plan.reachedChat(now);
    now += ReconnectPlan::kSteadySession;
    expectWait(15000u);
}

// The wait as the line "Reconnecting in ..." says it, rounded up to whole seconds.
TEST(ReconnectWaits, AreSaidInMinutesAndSeconds) {
    const std::pair<quint32, const char*> rows[] = {
        {999, "1 second"},
        {15000, "15 seconds"},
        {60000, "1 minute"},
        {61001, "1 minute 2 seconds"},
        {125000, "2 minutes 5 seconds"},
    };
    for (const auto& [ms, text] : rows)
        EXPECT_EQ(ReconnectPlan::waitText(ms), QLatin1String(text)) << ms;
}
