#include "floor.h"

// By itself, so that it is called as often as the provider calls its own.
int tembra::bench::lookLevelUp() {
    const char *value = std::getenv(LEVEL_VARIABLE);
    return value ? std::atoi(value) : 0;
}
