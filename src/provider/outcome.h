// What a step of an entry point answers.
//
// Steps under the lock hand their message back, so that it is written once the lock is left.
#pragma once

#include "log/trace.h"
#include "tembra_key_prov.h"

namespace tembra {

struct Outcome {
    int result;
    const char *message; // null where there is nothing to write
};

// The message of a step whose own line, with a value in it, stands in the trace already.
inline constexpr const char *ALREADY_LOGGED = "";

inline constexpr Outcome CONTINUE = {ORVEL_PKI_SUCCESS, nullptr};

// Writes the message, if any, at level error under the name of the routine; the result.
inline int finish(const Outcome &outcome, const char *function) {
    if (outcome.message && outcome.message[0] != '\0')
        TEMBRA_TRACE(TraceLevel::error, function, "%s", outcome.message);
    return outcome.result;
}

inline int fail(const char *message, const char *function) {
    return finish({ORVEL_PKI_FAILURE, message}, function);
}

} // namespace tembra
