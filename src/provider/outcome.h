// The outcome of a step of an entry point.
//
// Steps under the lock return their message, so that it is written after the lock is left.
#pragma once

#include "log/trace.h"
#include "tembra_key_prov.h"

#include <cstdint>

namespace tembra {

struct Outcome {
    int result;
    const char *message; // null if there is nothing to write
};

// The step has already logged its failure; write nothing more.
inline constexpr const char *ALREADY_LOGGED = "";

inline constexpr Outcome CONTINUE = {TEMBRA_SUCCESS, nullptr};

// Writes the message, if any, at level error under the name of the routine and returns the result.
inline int finish(const Outcome &outcome, const char *function) {
    if (outcome.message && outcome.message[0] != '\0')
        TEMBRA_TRACE(TraceLevel::error, function, "%s", outcome.message);
    return outcome.result;
}

inline int fail(const char *message, const char *function) {
    return finish({TEMBRA_FAILURE, message}, function);
}

// The token reports success, but a length beyond the buffer that it was given.
inline int failOverlong(const char *call, std::uint32_t length, std::uint32_t offered,
                        const char *function) {
    TEMBRA_TRACE(TraceLevel::error, function,
                 "%s returned %u bytes, more than the %u it was offered", call, length, offered);
    return TEMBRA_FAILURE;
}

} // namespace tembra
