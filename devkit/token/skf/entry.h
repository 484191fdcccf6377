// What every exported function is built from: the way in through the door, arguments, answers.
#pragma once

#include "crypto/bytes.h"
#include "fault_injection/call.h"
#include "token/model/refused.h"

#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace tembra::token::skf {

// Runs the body of an exported function and answers SAR_OK, or the code for what it threw: nothing
// is thrown across the boundary.
template <typename Body>
ULONG answer(door::Call &call, Body &&body) noexcept {
    return call.answer<ULONG>(SAR_FAIL, [&]() -> ULONG {
        try {
            std::forward<Body>(body)();
            return SAR_OK;
        } catch (const Refused &refused) {
            return refused.code;
        } catch (const std::bad_alloc &) {
            return SAR_MEMORYERR;
        } catch (const std::system_error &) {
            return SAR_FILEERR;
        }
    });
}

inline void requirePointer(const void *pointer) {
    require(pointer != nullptr, SAR_INVALIDPARAMERR);
}

// A name: Refused(SAR_INVALIDPARAMERR) when it is null, (SAR_NAMELENERR) when it is empty or longer
// than so many bytes.
std::string_view nameArgument(const char *name, std::size_t maxLength);

// A text of any length; Refused(SAR_INVALIDPARAMERR) when it is null.
std::string_view textArgument(const char *text);

// A buffer going in; it may be null when it is empty.
crypto::ByteView bytesArgument(const BYTE *data, ULONG length);

// The protocol of buffers going out, in two steps for results that are dear to compute: sets
// *length to what is needed; then true when there is a buffer with room for it, false when there is
// no buffer and the length was all that was asked for; Refused(SAR_BUFFER_TOO_SMALL) otherwise.
bool roomFor(std::size_t needed, const void *out, ULONG *length);

// The same in one step.
void giveBytes(crypto::ByteView bytes, void *out, ULONG *length);

// A list of names: each ended by NUL, and one more NUL.
void giveNames(const std::vector<std::string> &names, char *out, ULONG *length);

} // namespace tembra::token::skf
