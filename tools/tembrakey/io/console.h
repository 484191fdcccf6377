// The tool's output: results on standard output, everything else on standard error.
#pragma once

#include <string>
#include <string_view>

#include "tembrakey/io/failure.h"
#include "tembrakey/io/json.h"

namespace tembra::tool {

class Console {
public:
    explicit Console(bool json) : m_json(json) {}

    bool json() const { return m_json; }

    // The result: the object with --json, else the text, which needs no line end.
    void result(const Json &object, const std::string &text) const;

    // Part of a long result, unchanged.
    static void write(std::string_view text);

    // For people only, on standard error; nothing with --json.
    void note(const std::string &text) const;

    // "tembrakey: ..." or, with --json, an object whose first member is "error"; on standard error.
    void error(const Failure &failure) const;

    // Asks before something is destroyed, unless the user gave --yes. Throws Failure when the
    // answer is not yes, or when standard input or standard error is not a terminal.
    void requireConsent(bool yes, const std::string &question) const;

    // Makes sure that everything printed has arrived. Throws Failure.
    void finish() const;

private:
    bool m_json;
};

} // namespace tembra::tool
