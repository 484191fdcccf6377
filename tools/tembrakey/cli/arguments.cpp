#include "tembrakey/cli/arguments.h"

#include <algorithm>
#include <vector>

#include <CLI/CLI.hpp>

#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

struct Form {
    std::string names;
    std::string value; // empty for flags and positional arguments
};

Form split(const char *form) {
    const std::string text = form;
    const auto blank = text.find(' ');
    return blank == std::string::npos ? Form{text, ""}
                                      : Form{text.substr(0, blank), text.substr(blank + 1)};
}

} // namespace

Arguments &Arguments::declare(CLI::Option *option, const std::string &valueName) {
    m_last = option;
    m_last->type_name(valueName);
    return *this;
}

Arguments &Arguments::text(const char *form, std::string &target, const char *help) {
    const Form parts = split(form);
    return declare(m_app.add_option(parts.names, target, tr(help)), parts.value);
}

Arguments &Arguments::number(const char *form, int &target, const char *help, int least, int most) {
    const Form parts = split(form);
    CLI::Option *option = m_app.add_option(parts.names, target, tr(help));
    option->check([=](const std::string &text) {
        int value = 0;
        if (!CLI::detail::lexical_cast(text, value) || value < least || value > most)
            return tr("\"{1}\" is not a number from {2} to {3}",
                      {text, std::to_string(least), std::to_string(most)});
        return std::string();
    });
    return declare(option, parts.value);
}

Arguments &Arguments::flag(const char *form, bool &target, const char *help) {
    m_last = m_app.add_flag(form, target, tr(help));
    return *this;
}

Arguments &Arguments::choice(const char *form, std::string &target, const char *help,
                             std::initializer_list<const char *> choices) {
    const Form parts = split(form);
    CLI::Option *option = m_app.add_option(parts.names, target, tr(help));
    std::string shown;
    for (const char *one : choices)
        shown += (shown.empty() ? "" : "|") + std::string(one);
    const std::vector<std::string> known(choices.begin(), choices.end());
    option->check([=](const std::string &text) {
        if (std::find(known.begin(), known.end(), text) == known.end())
            return tr("\"{1}\" is not one of {2}", {text, shown});
        return std::string();
    });
    return declare(option, shown);
}

Arguments &Arguments::required() {
    m_last->required();
    return *this;
}

Arguments &Arguments::excludes(const char *option) {
    m_last->excludes(option);
    return *this;
}

} // namespace tembra::tool
