// Handles: numbers that are never reused, so that closed and invalid handles are detected.
#pragma once

#include "token/model/error.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

namespace tembra::token::skf {

inline std::uintptr_t nextHandle() {
    static std::atomic<std::uintptr_t> last{0x1000};
    return last += 16;
}

// The open objects of one kind. Thread-safe. An object lives until the last call using it returns.
template <typename Object>
class HandleTable {
public:
    HANDLE add(std::shared_ptr<Object> object) {
        const std::uintptr_t handle = nextHandle();
        const std::unique_lock guard(m_mutex);
        m_objects.emplace(handle, std::move(object));
        return reinterpret_cast<HANDLE>(handle);
    }

    // Null if there is no such handle.
    std::shared_ptr<Object> find(HANDLE handle) const {
        const std::shared_lock guard(m_mutex);
        const auto found = m_objects.find(reinterpret_cast<std::uintptr_t>(handle));
        return found == m_objects.end() ? nullptr : found->second;
    }

    std::shared_ptr<Object> get(HANDLE handle) const {
        auto object = find(handle);
        require(object != nullptr, SAR_INVALIDHANDLEERR);
        return object;
    }

    // Removes the object; null if there is no such handle.
    std::shared_ptr<Object> take(HANDLE handle) {
        const std::unique_lock guard(m_mutex);
        const auto node = m_objects.extract(reinterpret_cast<std::uintptr_t>(handle));
        return node.empty() ? nullptr : node.mapped();
    }

    std::size_t size() const {
        const std::shared_lock guard(m_mutex);
        return m_objects.size();
    }

private:
    mutable std::shared_mutex m_mutex;
    std::unordered_map<std::uintptr_t, std::shared_ptr<Object>> m_objects;
};

} // namespace tembra::token::skf
