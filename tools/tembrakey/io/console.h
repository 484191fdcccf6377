// What the tool says: results on standard output, everything else on standard error.
#pragma once

#include <string>
#include <string_view>

#include "crypto/bytes.h"
#include "tembrakey/cli/failure.h"
#include "tembrakey/io/record.h"

namespace tembra::tool {

class Console {
public:
    explicit Console(bool json) : m_json(json) {}

    bool json() const { return m_json; }

    // The result: the record with --json, else the text, which needs no line end.
    void result(const Record &record, const std::string &text) const;

    // A stretch of a long result, as it is.
    static void write(std::string_view text);

    // Only for people, on standard error; silent with --json.
    void note(const std::string &text) const;

    // "tembrakey: ..." or, with --json, an object that begins with the member "error"; on
    // standard error.
    void error(const Failure &failure) const;

    // Asks yes or no when standard input is a terminal; elsewhere the answer is yes.
    bool confirms(const std::string &question) const;

    // Makes sure that everything printed has arrived. Throws Failure.
    void finish() const;

private:
    bool m_json;
};

} // namespace tembra::tool
