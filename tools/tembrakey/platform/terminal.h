// The terminal, when there is one.
#pragma once

#include <cstdio>
#include <string>

namespace tembra::tool::platform {

bool isTerminal(std::FILE *stream);

// Reads one line from standard input, a terminal, into buffer (capacity bytes, NUL-terminated, no
// line end), without echo if hidden. False at the end of input or when the line does not fit. The
// terminal's echo comes back also when a signal ends the process.
bool readTerminalLine(char *buffer, std::size_t capacity, bool hidden);

// Columns of the terminal behind standard error, 80 when unknown.
int terminalColumns();

} // namespace tembra::tool::platform
