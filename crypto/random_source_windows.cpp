#include "random_source.h"

#include <cstdarg>
#include <cstdio>

#include "gcrypt_handles.h"

namespace tembra::crypto {

namespace {

// Everything that is worth a warning goes where libgcrypt would write it.
void logWithoutNotes(void *, int level, const char *format, std::va_list arguments) {
    if (level != GCRY_LOG_INFO && level != GCRY_LOG_CONT)
        std::vfprintf(stderr, format, arguments);
}

} // namespace

// libgcrypt gathers randomness from all over Windows, which takes long and writes a note about disk
// statistics each time: so once, as the seed of its own generator, and without the note.
void chooseRandomSource() {
    gcry_set_log_handler(logWithoutNotes, nullptr);
}

} // namespace tembra::crypto
