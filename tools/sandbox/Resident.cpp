#include "sandbox/Resident.h"

namespace sandbox {

void Resident::deliver(const ChatEvent& event) {
    if (event.id == event::WhisperFrom && m_onWhisper) m_onWhisper(*this, event.name, event.text);
}

} // namespace sandbox
