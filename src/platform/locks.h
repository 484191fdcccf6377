// The provider's two kinds of lock.
#pragma once

namespace tembra::platform {

// A recursive lock that is created and removed explicitly, as a Windows critical section is.
// Creating it twice has no effect. Before it is created and after it is removed, all other calls
// have no effect, so a host that calls before DeviceInit causes no undefined behaviour.
class CriticalSection {
public:
    void create();
    void remove();
    void enter();
    void leave();

private:
    alignas(16) unsigned char m_storage[64] = {};
    bool m_made = false;
};

// The innermost lock of the process, ready from the start. While it is held, nothing may be called
// that takes another lock or blocks.
void enterInnermostLock();
void leaveInnermostLock();

} // namespace tembra::platform
