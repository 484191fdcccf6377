// The process-wide lock of the provider and the lock inside the records.
#pragma once

#include "platform/locks.h"

namespace tembra {

// Serialises discovery, reference counts and the token calls of most entry points. Created by
// DeviceInit, deleted by DeviceEnd.
extern platform::CriticalSection g_lock;

// Holds g_lock for a block.
class ProviderLock {
public:
    ProviderLock() { g_lock.enter(); }
    ~ProviderLock() { leave(); }
    ProviderLock(const ProviderLock &) = delete;
    ProviderLock &operator=(const ProviderLock &) = delete;

    void leave() {
        if (m_held)
            g_lock.leave();
        m_held = false;
    }
    // Goes out of scope without releasing the lock.
    void abandon() { m_held = false; }

private:
    bool m_held = true;
};

// Holds the lock inside the records for a block. Protects the pointers and lists that entry points
// read without g_lock. The innermost lock: under it, never log, call out, allocate, free, take
// g_lock or touch the host's memory, since a host that survives a fault there would find it held.
class RecordLock {
public:
    RecordLock() { platform::enterInnermostLock(); }
    ~RecordLock() { platform::leaveInnermostLock(); }
    RecordLock(const RecordLock &) = delete;
    RecordLock &operator=(const RecordLock &) = delete;
};

} // namespace tembra
