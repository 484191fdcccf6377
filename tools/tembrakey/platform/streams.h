// Standard streams and inherited descriptors.
#pragma once

#include <cstdio>

namespace tembra::tool::platform {

// Makes standard streams carry bytes unchanged, and the console show UTF-8. Opens the null device
// in place of closed ones, so that no other file takes their numbers.
void prepareStreams();

// The stream for the tool's results.
std::FILE *standardOutput();

// From now on, what libraries print to standard output goes to standard error.
void divertLibraryOutput();

// Reads at most count bytes from an inherited descriptor: their number, 0 at the end, -1 on
// failure.
int readDescriptor(int descriptor, char *bytes, unsigned count);

} // namespace tembra::tool::platform
