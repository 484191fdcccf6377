// What the doctor found, for people and for programs.
#pragma once

#include <string>
#include <vector>

#include "tembrakey/io/record.h"

namespace tembra::tool::doctor {

enum class Status { ok, warning, failure };

struct Finding {
    const char *section; // "libraries", "settings" ...
    Status status;
    std::string subject; // "provider", "HasSM3", a token's name
    std::string text;
    std::string advice; // what to do; never empty for warnings and failures
    Record details;     // for JSON only
};

class Report {
public:
    // What follows belongs to this section; the title is English and is translated where shown.
    void begin(const char *section, const char *title);

    void ok(std::string subject, std::string text, Record details = {});
    void warn(std::string subject, std::string text, std::string advice, Record details = {});
    void fail(std::string subject, std::string text, std::string advice, Record details = {});

    int count(Status status) const;

    std::string text() const;
    Record record() const;

private:
    struct Section {
        const char *name;
        const char *title;
    };

    void add(Finding finding);
    std::string sectionText(const Section &section) const;

    std::vector<Section> m_sections;
    std::vector<Finding> m_findings;
};

} // namespace tembra::tool::doctor
