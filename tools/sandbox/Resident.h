#pragma once

#include "sandbox/ChatUser.h"

#include <functional>

namespace sandbox {

// A simulated user. What it receives it lets pass, except a whisper from someone, which it
// hands to whoever wants to answer it.
class Resident : public ChatUser {
public:
    using WhisperHandler = std::function<void(Resident&, const QString& from, const QString&)>;

    explicit Resident(WhisperHandler onWhisper) : m_onWhisper(std::move(onWhisper)) {}

    void deliver(const ChatEvent& event) override;

    bool online = false;
    qint64 returnAtMs = 0; // when a resident that has left comes back

private:
    WhisperHandler m_onWhisper;
};

} // namespace sandbox
