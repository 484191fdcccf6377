#include "platform/locks.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tembra::platform {

namespace {
SRWLOCK innermostLock = SRWLOCK_INIT;

CRITICAL_SECTION *sectionIn(unsigned char *storage) {
    return reinterpret_cast<CRITICAL_SECTION *>(storage);
}
} // namespace

void CriticalSection::create() {
    static_assert(sizeof(CRITICAL_SECTION) <= sizeof(m_storage));
    if (m_made)
        return;
    InitializeCriticalSection(sectionIn(m_storage));
    m_made = true;
}

void CriticalSection::remove() {
    if (!m_made)
        return;
    DeleteCriticalSection(sectionIn(m_storage));
    m_made = false;
}

void CriticalSection::enter() {
    if (m_made)
        EnterCriticalSection(sectionIn(m_storage));
}

void CriticalSection::leave() {
    if (m_made)
        LeaveCriticalSection(sectionIn(m_storage));
}

void enterInnermostLock() {
    AcquireSRWLockExclusive(&innermostLock);
}

void leaveInnermostLock() {
    ReleaseSRWLockExclusive(&innermostLock);
}

} // namespace tembra::platform
