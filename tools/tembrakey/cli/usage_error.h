// What is wrong with a command line, in the user's words and language.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace tembra::tool {

// A word that no command takes, with what may have been meant; empty if there is none.
std::string unknownWord(const CLI::App &app);

// Why the parser refused a command line whose last word is lastWord.
std::string usageProblem(const CLI::App &app, const CLI::ParseError &error,
                         const std::string &lastWord);

} // namespace tembra::tool
