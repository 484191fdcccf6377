// A host's typical session, from start to a signature to the end, and the trace it leaves at level
// verbose: pointers, hex dumps and their lengths masked.
#pragma once

#include "trace_capture.h"

namespace tembra::test {

// What the token must be for the golden text: no other device is present, and its one container
// has an SM2 signature key and no certificate.
inline constexpr const char *SESSION_LABEL = "signer";
inline constexpr const char *SESSION_PIN = "12345678";

// DeviceInit has run. Ends with DeviceEnd. Returns the signature.
std::vector<unsigned char> runTypicalSession();

// The lines of data/<name>.trace, where calls and returns stand by their arrows and names alone:
// "init" is DeviceInit without settings, "session" what follows it, "entry_points" a call of each.
Lines goldenTrace(const std::string &name);

// The trace since the mark in the form of a golden one.
Lines maskedTrace();

} // namespace tembra::test
