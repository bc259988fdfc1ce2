#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

class QJSEngine;

// Stops a script or plug-in that runs too long. Calls into script engines
// nest (a plug-in's call may make the bot fire an event at another one); the
// bound is counted from the outermost call, and when it passes every engine
// that is running is interrupted, so the event loop gets the thread back.
// The watching happens on a thread of its own, the only one beside the event
// loop; it touches nothing but the engines' interrupt flags.
class ScriptWatchdog {
public:
    static constexpr int kBoundMs = 2000;

    static ScriptWatchdog& instance();
    ~ScriptWatchdog();

    // A call into `engine` begins.
    void enter(QJSEngine* engine);
    // That call has ended; true when the bound passed during it. The engine's
    // interrupt flag is cleared again.
    bool leave(QJSEngine* engine);

private:
    ScriptWatchdog() = default;
    void watch();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<QJSEngine*> m_running;
    std::chrono::steady_clock::time_point m_deadline;
    bool m_expired = false;
    bool m_stopping = false;
    std::thread m_thread;
};
