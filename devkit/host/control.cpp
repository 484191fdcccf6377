// The functions of tembra_devkit_faults.h.
#include "tembra_devkit_faults.h"

#include "blocks.h"
#include "fault_injection/state.h"

using namespace tembra;

int TembraHostKitSetFaults(const char *plan) {
    return fault_injection::setFaults(plan);
}

int TembraHostKitSetJournal(const char *path) {
    return fault_injection::setJournal(path);
}

unsigned long long TembraHostKitCallCount(const char *function) {
    return fault_injection::callCount(function);
}

unsigned long long TembraHostKitLiveBlocks(void) {
    return host::liveBlocks();
}
