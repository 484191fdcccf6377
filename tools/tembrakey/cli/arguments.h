// The arguments of a command. Keeps the parsing library out of the commands.
#pragma once

#include <initializer_list>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tembra::tool {

// Each function declares one argument. The form is "-o,--out FILE" for an option and the name of
// its value, "--so" for a flag, "FILE" for a positional argument. The help text is English and
// translated here. Targets must outlive parsing, and keep their value if the argument is absent.
class Arguments {
public:
    explicit Arguments(CLI::App &app) : m_app(app) {}

    Arguments &text(const char *form, std::string &target, const char *help);
    Arguments &number(const char *form, int &target, const char *help, int least, int most);
    Arguments &flag(const char *form, bool &target, const char *help);
    Arguments &choice(const char *form, std::string &target, const char *help,
                      std::initializer_list<const char *> choices);

    // The argument declared last is required, or cannot be combined with another one.
    Arguments &required();
    Arguments &excludes(const char *option);

private:
    Arguments &declare(CLI::Option *option, const std::string &valueName);

    CLI::App &m_app;
    CLI::Option *m_last = nullptr;
};

} // namespace tembra::tool
