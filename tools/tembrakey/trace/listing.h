// A log as text for people.
#pragma once

#include "tembrakey/trace/failures.h"
#include "tembrakey/trace/trace_reader.h"

namespace tembra::trace {

// How much there is, and how exact durations are.
std::string summaryText(const Summary &summary, Translate tr);

// A table of the equal failures, and one of the ordinary lines; empty when there is nothing.
std::string failuresText(const Failures &failures, Translate tr);

class Listing {
public:
    explicit Listing(Translate tr) : m_tr(tr) {}

    // The call with its lines and inner calls. The day is written before the first call and
    // wherever it changes.
    std::string whole(const Call &call);
    std::string foreign(std::uint64_t number, std::string_view text) const;

private:
    void append(std::string &text, const Call &call, std::size_t depth) const;
    std::string state(const Call &call) const;
    std::string lineText(const Call &call, const CallLine &line) const;

    Translate m_tr;
    std::string m_day;
};

} // namespace tembra::trace
