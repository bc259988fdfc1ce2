#pragma once

#include <QtGlobal>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

class QJSEngine;

// The memory one script or plug-in is held to account for: the growth of the
// process's resident size while its calls ran, less what it gave back in
// them. Kept by the script or plug-in; read by the watchdog's thread.
struct ScriptFootprint {
    std::atomic<qint64> bytes{0};
    // It passed its cap: it is stopped and takes no more calls.
    std::atomic<bool> over{false};
};

// Stops a script or plug-in that runs too long or takes too much memory.
//
// Time: calls into script engines nest (a plug-in's call may make the bot
// fire an event at another one); the bound is counted from the outermost call,
// and when it passes every engine that is running is interrupted, so the event
// loop gets the thread back.
//
// Memory: each script or plug-in may grow the process by ScriptMemoryLimit
// over all its calls. While a call runs, the watchdog's thread samples the
// resident size and interrupts the engine that passes its cap, and
// AllocationGuard refuses a single allocation that would pass it. A C plug-in
// cannot be interrupted: it sees the refused allocation and is stopped when
// its call returns.
//
// The watching thread is the only one beside the event loop; it touches
// nothing but the engines' interrupt flags and the footprints.
class ScriptWatchdog {
public:
    static constexpr int kBoundMs = 2000;
    // How often the resident size is read while a call runs.
    static constexpr int kSampleMs = 10;

    enum class Outcome { Finished, TimedOut, OverMemory };

    static ScriptWatchdog& instance();
    ~ScriptWatchdog();

    // A call into `engine` (null for a C plug-in) begins, on the event loop.
    void enter(QJSEngine* engine, ScriptFootprint& footprint);
    // That call has ended. The engine's interrupt flag is cleared again.
    Outcome leave(QJSEngine* engine);
    // After a call that finished: when what it keeps passes its cap, its
    // garbage is collected and the freed memory handed back; true when it is
    // under the cap then.
    bool settle(QJSEngine* engine, ScriptFootprint& footprint);

    // ScriptMemoryLimit in bytes.
    static qint64 capBytes();
    // "256 MB": the cap as the lines that name it say it.
    static QString capText();
    // The error of a call stopped at its cap.
    static QString overMemoryText();

private:
    struct Running {
        QJSEngine* engine;
        ScriptFootprint* footprint;
        // Resident size when it last took the thread.
        qint64 mark;
        // Resident size at which it passes its cap.
        qint64 limit;
    };

    ScriptWatchdog() = default;
    void watch();
    // The call on top takes the thread from now on (resident size `now`).
    void resume(Running& running, qint64 now);
    // What the call on top grew the process by until `now` goes on its account.
    static void charge(const Running& running, qint64 now);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Running> m_running;
    std::chrono::steady_clock::time_point m_deadline;
    qint64 m_cap = 0;
    bool m_expired = false;
    bool m_stopping = false;
    std::thread m_thread;
};
