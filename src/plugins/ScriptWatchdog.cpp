#include "plugins/ScriptWatchdog.h"

#include "config/SettingsWrapper.h"
#include "plugins/AllocationGuard.h"
#include "plugins/ProcessMemory.h"

#include <QJSEngine>
#include <QString>
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

qint64 ScriptWatchdog::capBytes() {
    return qint64(SettingsWrapper::instance().ScriptMemoryLimit()) * 1024 * 1024;
}

QString ScriptWatchdog::capText() {
    return QString::number(SettingsWrapper::instance().ScriptMemoryLimit()) + QStringLiteral(" MB");
}

QString ScriptWatchdog::overMemoryText() {
    return QStringLiteral("it used more than ") + capText() +
           QStringLiteral(" of memory (ScriptMemoryLimit) and was stopped");
}

void ScriptWatchdog::charge(const Running& running, qint64 now) {
    // Clamped at nothing: memory it is handed and frees is not a credit.
    const qint64 bytes = running.footprint->bytes.load() + (now - running.mark);
    running.footprint->bytes.store(std::max<qint64>(bytes, 0));
}

void ScriptWatchdog::resume(Running& running, qint64 now) {
    running.mark = now;
    running.limit = now - running.footprint->bytes.load() + m_cap;
    AllocationGuard::Arm(running.limit, &running.footprint->over, running.engine);
}

void ScriptWatchdog::enter(QJSEngine* engine, ScriptFootprint& footprint) {
    const qint64 cap = m_running.empty() ? capBytes() : m_cap;
    {
        std::lock_guard lock(m_mutex);
        if (!m_thread.joinable()) m_thread = std::thread([this] { watch(); });
        const qint64 now = ProcessMemory::ResidentBytes();
        if (m_running.empty()) {
            m_deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kBoundMs);
            m_expired = false;
            m_cap = cap;
        } else {
            charge(m_running.back(), now);
        }
        m_running.push_back({engine, &footprint, 0, 0});
        resume(m_running.back(), now);
        // A call begun after the bound passed is stopped at once.
        if (m_expired && engine) engine->setInterrupted(true);
    }
    m_changed.notify_all();
}

ScriptWatchdog::Outcome ScriptWatchdog::leave(QJSEngine* engine) {
    Outcome outcome = Outcome::Finished;
    {
        std::lock_guard lock(m_mutex);
        const qint64 now = ProcessMemory::ResidentBytes();
        const auto it = std::find_if(m_running.rbegin(), m_running.rend(),
                                     [engine](const Running& r) { return r.engine == engine; });
        if (it != m_running.rend()) {
            charge(*it, now);
            if (it->footprint->over.load()) outcome = Outcome::OverMemory;
            m_running.erase(std::next(it).base());
        }
        if (outcome == Outcome::Finished && m_expired) outcome = Outcome::TimedOut;
        if (m_running.empty())
            AllocationGuard::Disarm();
        else
            resume(m_running.back(), now);
        const bool stillRunning =
            std::any_of(m_running.begin(), m_running.end(),
                        [engine](const Running& r) { return r.engine == engine; });
        if (engine && !stillRunning) engine->setInterrupted(false);
    }
    m_changed.notify_all();
    return outcome;
}

bool ScriptWatchdog::settle(QJSEngine* engine, ScriptFootprint& footprint) {
    if (footprint.bytes.load() <= capBytes()) return true;
    enter(engine, footprint);
    if (engine) engine->collectGarbage();
    ProcessMemory::ReturnFreedMemory();
    leave(engine);
    if (footprint.bytes.load() <= capBytes()) return true;
    footprint.over.store(true);
    return false;
}

void ScriptWatchdog::watch() {
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        if (m_running.empty()) {
            m_changed.wait(lock);
            continue;
        }
        const auto sample = std::chrono::steady_clock::now() + std::chrono::milliseconds(kSampleMs);
        m_changed.wait_until(lock, m_expired ? sample : std::min(m_deadline, sample));
        if (m_running.empty()) continue;
        if (!m_expired && std::chrono::steady_clock::now() >= m_deadline) {
            m_expired = true;
            for (const Running& running : m_running) {
                if (running.engine) running.engine->setInterrupted(true);
            }
        }
        const Running& top = m_running.back();
        if (!top.footprint->over.load() && ProcessMemory::ResidentBytes() > top.limit) {
            top.footprint->over.store(true);
            if (top.engine) top.engine->setInterrupted(true);
        }
    }
}
