#include "tembrakey/doctor/report.h"

#include <algorithm>

#include "tembrakey/text/printable.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

struct SectionName {
    const char *name;
    const char *title; // English
};

constexpr SectionName SECTIONS[] = {{"libraries", N_("Libraries")},
                                    {"settings", N_("Settings")},
                                    {"trace", N_("Trace log")},
                                    {"tokens", N_("Tokens")},
                                    {"provider", N_("Provider at work")}};

const char *nameOf(Section section) {
    return SECTIONS[static_cast<std::size_t>(section)].name;
}

Json makeFinding(const char *status, Section section, const std::string &subject,
                 const std::string &text, const std::string &advice, const Json &details) {
    Json finding = {
        {"section", nameOf(section)}, {"subject", subject}, {"status", status}, {"text", text}};
    if (!advice.empty())
        finding["advice"] = advice;
    if (details.is_object())
        finding.update(details);
    return finding;
}

std::string textOf(const Json &finding, const char *member) {
    return printable(finding.value(member, ""));
}

// Columns of a terminal that the text takes: Chinese characters are two wide.
std::size_t columns(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        count += byte >= 0xE0 ? 2 : ((byte & 0xC0) != 0x80 ? 1 : 0);
    }
    return count;
}

std::string padded(const std::string &text, std::size_t width) {
    return text + std::string(width - std::min(width, columns(text)), ' ');
}

} // namespace

void Report::ok(Section section, const std::string &subject, const std::string &text,
                const Json &details) {
    add(makeFinding(N_("ok"), section, subject, text, "", details));
}

void Report::warn(Section section, const std::string &subject, const std::string &text,
                  const std::string &advice, const Json &details) {
    add(makeFinding(N_("warning"), section, subject, text, advice, details));
}

void Report::fail(Section section, const std::string &subject, const std::string &text,
                  const std::string &advice, const Json &details) {
    add(makeFinding(N_("failure"), section, subject, text, advice, details));
}

void Report::add(Json finding) {
    if (m_found)
        m_found(finding);
    m_findings.push_back(std::move(finding));
}

int Report::count(const std::string &status) const {
    return static_cast<int>(std::ranges::count_if(
        m_findings, [&](const Json &one) { return one["status"] == status; }));
}

bool Report::hasFailure(Section section) const {
    return std::ranges::any_of(m_findings, [&](const Json &one) {
        return one["section"] == nameOf(section) && one["status"] == "failure";
    });
}

std::string Report::sectionText(Section section) const {
    std::size_t width = 0;
    for (const Json &one : m_findings)
        if (one["section"] == nameOf(section))
            width = std::max(width, columns(textOf(one, "subject")));
    std::string text;
    std::string previous;
    for (const Json &one : m_findings) {
        if (one["section"] != nameOf(section))
            continue;
        const std::string subject = textOf(one, "subject");
        text += "  " + padded(tr(textOf(one, "status").c_str()), 9) +
                padded(subject == previous ? "" : subject, width) + "  " + textOf(one, "text") +
                "\n";
        if (one.contains("advice"))
            text += std::string(13 + width, ' ') + "-> " + textOf(one, "advice") + "\n";
        previous = subject;
    }
    const char *title = SECTIONS[static_cast<std::size_t>(section)].title;
    return text.empty() ? "" : tr(title) + ("\n" + text) + "\n";
}

std::string Report::text() const {
    std::string text;
    for (std::size_t i = 0; i < std::size(SECTIONS); ++i)
        text += sectionText(static_cast<Section>(i));
    const int failures = count("failure");
    const int warnings = count("warning");
    if (failures == 0 && warnings == 0)
        return text + tr("Everything is in order");
    return text +
           tr("failures: {1}, warnings: {2}", {std::to_string(failures), std::to_string(warnings)});
}

Json Report::json() const {
    return {
        {"failures", count("failure")}, {"warnings", count("warning")}, {"findings", m_findings}};
}

} // namespace tembra::tool::doctor
