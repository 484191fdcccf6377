// A log's bytes to masked calls.
#pragma once

#include <string_view>

#include "tembrakey/trace/call_builder.h"
#include "tembrakey/trace/line_reader.h"
#include "tembrakey/trace/redactor.h"
#include "tembrakey/trace/summary.h"

namespace tembra::trace {

// Every text passes the redactor before anything else sees it.
class TraceReader {
public:
    TraceReader(Mask mask, Sink &sink);

    void feed(std::string_view block) { m_reader.feed(block); }
    void finish();
    const Summary &summary() const { return m_counting.summary; }

private:
    // Counts what passes on its way to the sink.
    struct Counting final : Sink {
        explicit Counting(Sink &target) : sink(target) {}
        void take(Call &&call) override;
        void takeForeign(std::uint64_t number, std::string_view text) override;
        Sink &sink;
        Summary summary;
    };

    void take(const Piece &piece);
    void takeLine(std::string_view text, std::uint64_t number, std::uint64_t length);

    Counting m_counting;
    Redactor m_redactor;
    CallBuilder m_builder;
    LineReader m_reader;
    std::string m_beginning;        // of a line that comes in several pieces
    std::uint64_t m_fullLength = 0; // of such a line
};

} // namespace tembra::trace
