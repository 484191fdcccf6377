#include "tembrakey/cli/arguments.h"

#include <CLI/CLI.hpp>

#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

struct Spec {
    std::string names;
    std::string value; // empty: the names say it
};

Spec split(const char *spec) {
    const std::string text = spec;
    const auto blank = text.find(' ');
    return blank == std::string::npos ? Spec{text, ""}
                                      : Spec{text.substr(0, blank), text.substr(blank + 1)};
}

} // namespace

Arguments &Arguments::declare(CLI::Option *option, const std::string &valueName) {
    last_ = option;
    last_->type_name(valueName);
    return *this;
}

Arguments &Arguments::text(const char *spec, std::string &target, const char *help) {
    const Spec parts = split(spec);
    return declare(app_.add_option(parts.names, target, tr(help)), parts.value);
}

Arguments &Arguments::number(const char *spec, int &target, const char *help, int least, int most) {
    const Spec parts = split(spec);
    CLI::Option *option = app_.add_option(parts.names, target, tr(help));
    CLI::Range range(least, most);
    range.description("");
    option->check(range);
    return declare(option, parts.value);
}

Arguments &Arguments::flag(const char *spec, bool &target, const char *help) {
    last_ = app_.add_flag(spec, target, tr(help));
    return *this;
}

Arguments &Arguments::choice(const char *spec, std::string &target,
                             std::initializer_list<const char *> choices, const char *help) {
    const Spec parts = split(spec);
    CLI::Option *option = app_.add_option(parts.names, target, tr(help));
    CLI::IsMember member(std::vector<std::string>(choices.begin(), choices.end()));
    std::string shown;
    for (const char *one : choices)
        shown += (shown.empty() ? "" : "|") + std::string(one);
    member.description("");
    option->check(member);
    return declare(option, shown);
}

Arguments &Arguments::required() {
    last_->required();
    return *this;
}

Arguments &Arguments::excludes(const char *option) {
    last_->excludes(option);
    return *this;
}

} // namespace tembra::tool
