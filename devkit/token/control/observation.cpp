// Faults, journal, counts, version.
#include "tembra_devkit_faults.h"
#include "tembra_soft_token.h"

#include "fault_injection/state.h"
#include "token/skf/handles.h"

#include <string_view>

using tembra::token::skf::Handles;
using tembra::token::skf::handles;

int TembraSoftTokenSetFaults(const char *plan) {
    return tembra::fault_injection::setFaults(plan);
}

int TembraSoftTokenSetJournal(const char *path) {
    return tembra::fault_injection::setJournal(path);
}

unsigned long long TembraSoftTokenCallCount(const char *function) {
    return tembra::fault_injection::callCount(function);
}

unsigned long long TembraSoftTokenOpenHandles(const char *kind) {
    const Handles &all = handles();
    const struct {
        std::string_view kind;
        std::size_t count;
    } table[] = {{"device", all.devices.size()},
                 {"application", all.applications.size()},
                 {"container", all.containers.size()},
                 {"key", all.keys.size()},
                 {"digest", all.digests.size()}};
    unsigned long long sum = 0;
    for (const auto &row : table)
        sum += kind == nullptr || row.kind == kind ? row.count : 0;
    return sum;
}

const char *TembraSoftTokenVersion(void) {
    return TEMBRA_KIT_VERSION;
}
