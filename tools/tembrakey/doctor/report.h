// The doctor's findings, for people and for programs.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tembrakey/io/json.h"

namespace tembra::tool::doctor {

// The sections of the report, in their order.
enum class Section { libraries, settings, trace, tokens, provider };

class Report {
public:
    // found, if given, is called with each finding as it is made.
    explicit Report(std::function<void(const Json &)> found = {}) : m_found(std::move(found)) {}

    // The subject is, for example, "provider" or a token's name; details are for JSON only.
    void ok(Section section, const std::string &subject, const std::string &text,
            const Json &details = {});
    void warn(Section section, const std::string &subject, const std::string &text,
              const std::string &advice, const Json &details = {});
    void fail(Section section, const std::string &subject, const std::string &text,
              const std::string &advice, const Json &details = {});

    // A finding of another report.
    void add(Json finding);

    int count(const std::string &status) const; // "ok", "warning", "failure"
    bool hasFailure(Section section) const;

    std::string text() const;
    Json json() const;

private:
    std::string sectionText(Section section) const;

    std::function<void(const Json &)> m_found;
    std::vector<Json> m_findings;
};

} // namespace tembra::tool::doctor
