// The terminal, if there is one.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

namespace tembra::tool::platform {

bool isTerminal(std::FILE *stream);

// Whether the process has a terminal to ask at, whatever its standard streams are.
bool canAskAtTerminal();

// Shows the prompt on that terminal and reads a line, without echo if hidden. Nothing at the end of
// input or when the line is too long. Signals that end the process restore the terminal's echo.
std::optional<std::string> askAtTerminal(const std::string &prompt, bool hidden);

// Columns of the terminal behind standard error, 80 if unknown.
int terminalColumns();

} // namespace tembra::tool::platform
