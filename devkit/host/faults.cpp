#include "tembra_devkit_faults.h"

#include "fault_injection/control.h"
#include "handed_out.h"

using namespace tembra;

extern "C" {

int TembraHostKitSetFaults(const char *plan) {
    return door::setFaults(plan);
}

int TembraHostKitSetJournal(const char *path) {
    return door::setJournal(path);
}

unsigned long long TembraHostKitCallCount(const char *function) {
    return door::callCount(function);
}

unsigned long long TembraHostKitLiveBlocks(void) {
    return host::liveBlocks();
}

} // extern "C"
