#include "tembrakey/doctor/report.h"

#include <algorithm>

#include "tembrakey/text/text.h"
#include "tembrakey/trace/texts.h"

namespace tembra::tool::doctor {

namespace {

const char *statusName(Status status) {
    switch (status) {
    case Status::ok: return "ok";
    case Status::warning: return "warning";
    case Status::failure: return "failure";
    }
    return "";
}

// Columns that the text takes up: Chinese characters are two wide.
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

// subject: empty when the line before has the same. What libraries and tokens say of themselves
// could steer a terminal.
std::string line(const Finding &finding, const std::string &subject, std::size_t subjectWidth) {
    const std::string status = padded(tr(statusName(finding.status)), 9);
    std::string text = "  " + status + padded(trace::printable(subject), subjectWidth) + "  " +
                       trace::printable(finding.text) + "\n";
    if (!finding.advice.empty())
        text +=
            std::string(13 + subjectWidth, ' ') + "-> " + trace::printable(finding.advice) + "\n";
    return text;
}

} // namespace

void Report::begin(const char *section, const char *title) {
    m_sections.push_back({section, title});
}

void Report::add(Finding finding) {
    finding.section = m_sections.back().name;
    m_findings.push_back(std::move(finding));
}

void Report::ok(std::string subject, std::string text, Record details) {
    add({"", Status::ok, std::move(subject), std::move(text), "", std::move(details)});
}

void Report::warn(std::string subject, std::string text, std::string advice, Record details) {
    add({"", Status::warning, std::move(subject), std::move(text), std::move(advice),
         std::move(details)});
}

void Report::fail(std::string subject, std::string text, std::string advice, Record details) {
    add({"", Status::failure, std::move(subject), std::move(text), std::move(advice),
         std::move(details)});
}

int Report::count(Status status) const {
    return static_cast<int>(
        std::count_if(m_findings.begin(), m_findings.end(),
                      [status](const Finding &one) { return one.status == status; }));
}

std::string Report::sectionText(const Section &section) const {
    std::size_t width = 0;
    for (const Finding &one : m_findings)
        if (one.section == section.name)
            width = std::max(width, columns(one.subject));
    std::string text = std::string(tr(section.title)) + "\n";
    std::string subject;
    for (const Finding &one : m_findings) {
        if (one.section != section.name)
            continue;
        text += line(one, one.subject == subject ? "" : one.subject, width);
        subject = one.subject;
    }
    return text + "\n";
}

std::string Report::text() const {
    std::string text;
    for (const Section &section : m_sections)
        text += sectionText(section);
    const int failures = count(Status::failure);
    const int warnings = count(Status::warning);
    if (failures + warnings == 0)
        return text + tr("Everything is in order");
    return text +
           tr("failures: {1}, warnings: {2}", {std::to_string(failures), std::to_string(warnings)});
}

Record Report::record() const {
    Record::List findings;
    for (const Finding &one : m_findings) {
        Record record;
        record.add("section", one.section)
            .add("subject", one.subject)
            .add("status", statusName(one.status))
            .add("text", one.text);
        if (!one.advice.empty())
            record.add("advice", one.advice);
        for (const Record::Field &field : one.details.fields())
            std::visit([&](const auto &value) { record.add(field.name, value); }, field.value);
        findings.push_back(std::move(record));
    }
    return Record()
        .add("failures", count(Status::failure))
        .add("warnings", count(Status::warning))
        .add("findings", std::move(findings));
}

} // namespace tembra::tool::doctor
