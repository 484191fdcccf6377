// The two kinds of lock the provider needs.
#pragma once

namespace tembra::platform {

// A recursive lock that is made and deleted by hand: a Windows critical section. Making one that
// is made, or deleting one that is not, does nothing; entering one that is not made does nothing
// either, so that a host which calls before DeviceInit meets no undefined behaviour.
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

// The innermost lock of the process, ready from the start. Nothing is called while it is held that
// could take another lock or wait.
void enterInnermostLock();
void leaveInnermostLock();

} // namespace tembra::platform
