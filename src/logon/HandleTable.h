#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace logon {

// Objects behind the 32-bit handles of the call table. 0 is never a handle, and a number is
// not given out again soon after it is freed, so a stale handle finds nothing instead of
// someone else's object. One thread only, like the program.
template <typename T> class HandleTable {
public:
    std::uint32_t add(std::unique_ptr<T> item) {
        if (!item) return 0;
        while (next_ == 0 || items_.contains(next_))
            ++next_;
        const std::uint32_t handle = next_++;
        items_.emplace(handle, std::move(item));
        return handle;
    }

    T* find(std::uint32_t handle) const {
        const auto it = items_.find(handle);
        return it == items_.end() ? nullptr : it->second.get();
    }

    bool remove(std::uint32_t handle) { return items_.erase(handle) > 0; }

    std::size_t size() const { return items_.size(); }

private:
    std::unordered_map<std::uint32_t, std::unique_ptr<T>> items_;
    std::uint32_t next_ = 1;
};

} // namespace logon
