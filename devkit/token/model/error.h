// How everything in the software token fails: by throwing the SAR_ code that the caller gets.
#pragma once

#include <new>

#include "platform/skf.h"

namespace tembra::token {

struct Error {
    ULONG code;
};

inline void require(bool condition, ULONG codeIfNot) {
    if (!condition)
        throw Error{codeIfNot};
}

// Runs the body of an exported function. Returns SAR_OK, or the code for what it threw.
template <typename Body>
ULONG resultOf(Body body) noexcept {
    try {
        body();
        return SAR_OK;
    } catch (const Error &error) {
        return error.code;
    } catch (const std::bad_alloc &) {
        return SAR_MEMORYERR;
    } catch (...) { // libgcrypt failed
        return SAR_FAIL;
    }
}

} // namespace tembra::token
