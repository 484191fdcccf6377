// What is wrong with a command line, in the user's words and language.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace tembra::tool {

// The innermost command named, with the way to it: "tembrakey key generate".
std::string commandNamed(const CLI::App &app);

// Ends the parsing because of an argument's value; the text is what the user reads.
[[noreturn]] void refuseValue(const std::string &text);

// The reason why `app` refused a command line whose last word is `lastWord`.
std::string usageProblem(const CLI::App &app, const CLI::ParseError &error,
                         const std::string &lastWord);

} // namespace tembra::tool
