#include <cstdarg>
#include <cstdio>

#include "gcrypt_handles.h"
#include "random.h"

namespace tembra::crypto {

namespace {

// Writes warnings and errors where libgcrypt would, and drops the rest.
void logWithoutNotes(void *, int level, const char *format, std::va_list arguments) {
    if (level != GCRY_LOG_INFO && level != GCRY_LOG_CONT)
        std::vfprintf(stderr, format, arguments);
}

} // namespace

// On Windows libgcrypt's system generator polls the whole machine for every request and prints a
// note about disk statistics each time. So keep its default generator, which polls once for a seed.
void chooseRandomSource() {
    gcry_set_log_handler(logWithoutNotes, nullptr);
}

} // namespace tembra::crypto
