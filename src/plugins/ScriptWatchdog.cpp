#include "plugins/ScriptWatchdog.h"

#include <QJSEngine>
#include <algorithm>

ScriptWatchdog& ScriptWatchdog::instance() {
    static ScriptWatchdog watchdog;
    return watchdog;
}

ScriptWatchdog::~ScriptWatchdog() {
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void ScriptWatchdog::enter(QJSEngine* engine) {
    {
        std::lock_guard lock(m_mutex);
        if (!m_thread.joinable()) m_thread = std::thread([this] { watch(); });
        if (m_running.empty()) {
            m_deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kBoundMs);
            m_expired = false;
        }
        m_running.push_back(engine);
        // A call begun after the bound passed is stopped at once.
        if (m_expired) engine->setInterrupted(true);
    }
    m_changed.notify_all();
}

bool ScriptWatchdog::leave(QJSEngine* engine) {
    bool expired = false;
    {
        std::lock_guard lock(m_mutex);
        const auto it = std::find(m_running.rbegin(), m_running.rend(), engine);
        if (it != m_running.rend()) m_running.erase(std::next(it).base());
        expired = m_expired;
        if (std::find(m_running.begin(), m_running.end(), engine) == m_running.end())
            engine->setInterrupted(false);
    }
    m_changed.notify_all();
    return expired;
}

void ScriptWatchdog::watch() {
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        if (m_running.empty() || m_expired) {
            m_changed.wait(lock);
            continue;
        }
        if (m_changed.wait_until(lock, m_deadline) != std::cv_status::timeout) continue;
        if (m_running.empty() || std::chrono::steady_clock::now() < m_deadline) continue;
        m_expired = true;
        for (QJSEngine* engine : m_running)
            engine->setInterrupted(true);
    }
}
