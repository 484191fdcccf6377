// Calls as text for people.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tembrakey/trace/call.h"
#include "tembrakey/trace/summary.h"
#include "tembrakey/trace/texts.h"

namespace tembra::trace {

// What one reads first: how much there is, what failed, how far durations go.
std::string summaryText(const Summary &summary, Translate translate);

class Listing {
public:
    explicit Listing(Translate translate) : m_translate(translate) {}

    // One line for each failed call in it, the inner ones too; empty when none failed.
    std::string failures(const Call &call) const;
    // The call with its lines and inner calls. The day stands before the first call and wherever
    // it changes.
    std::string whole(const Call &call);
    std::string foreign(std::uint64_t number, std::string_view text) const;

private:
    void append(std::string &text, const Call &call, std::size_t depth) const;
    void appendHead(std::string &text, const Call &call, std::size_t depth) const;
    void appendLine(std::string &text, const Call &call, std::size_t index,
                    std::size_t depth) const;
    std::string duration(const Call &call) const;
    std::string name(const Call &call) const;

    Translate m_translate;
    std::string m_day;
};

} // namespace tembra::trace
