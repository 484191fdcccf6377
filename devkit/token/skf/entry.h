// Common parts of the exported functions: arguments and outputs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "crypto/bytes.h"
#include "fault_injection/call.h"
#include "token/model/error.h"

namespace tembra::token::skf {

// Returns the planned result of the call or that of the body.
template <typename Body>
ULONG answer(fault_injection::Call &call, Body body) noexcept {
    return call.answer<ULONG>(SAR_FAIL, [&] { return resultOf(body); });
}

inline void requirePointer(const void *pointer) {
    require(pointer != nullptr, SAR_INVALIDPARAMERR);
}

// Error(SAR_INVALIDPARAMERR) if the text is null.
std::string_view textArgument(const char *text);

// Also Error(SAR_NAMELENERR) if the name is empty or longer than this.
std::string_view nameArgument(const char *name, std::size_t maxLength);

// Error(SAR_INVALIDPARAMERR) if the buffer is null but not empty.
crypto::ByteView bytesArgument(const BYTE *data, ULONG length);

// The protocol of output buffers, in two steps for results that are costly to compute: sets *length
// to the needed length and returns true if the buffer has room for it, false if it is null.
// Error(SAR_BUFFER_TOO_SMALL) otherwise.
bool roomFor(std::size_t needed, const void *out, ULONG *length);

// The same in one step.
void outputBytes(crypto::ByteView bytes, void *out, ULONG *length);

// Each name followed by NUL, and a final NUL.
void outputNames(const std::vector<std::string> &names, char *out, ULONG *length);

} // namespace tembra::token::skf
