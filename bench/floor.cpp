#include "floor.h"

#include <cstdlib>
#include <sys/syscall.h>
#include <unistd.h>

namespace tembra::bench {

std::recursive_mutex floorLock;

void lookLevelUp(int statements) {
    for (int i = 0; i < statements; ++i) {
        const char *value = std::getenv("TEMBRA_KEY_PROV_LOG_LEVEL");
        [[maybe_unused]] const volatile int level = value ? std::atoi(value) : 0;
    }
}

LineHead lineHead() {
    LineHead head = {syscall(SYS_gettid), {}};
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    std::strftime(head.time, sizeof(head.time), "%Y-%m-%d %H:%M:%S", &local);
    return head;
}

} // namespace tembra::bench
