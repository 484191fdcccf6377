// What the tests of the trace reader share.
#pragma once

#include "tembrakey/trace/filter.h"
#include "tembrakey/trace/listing.h"
#include "tembrakey/trace/redactor.h"
#include "tembrakey/trace/trace_reader.h"

namespace tembra::trace::test {

// "7 2026-11-21 12:30:SS [LEVEL] [function] message \n"
inline std::string line(int thread, int second, const std::string &level,
                        const std::string &function, const std::string &message) {
    return std::to_string(thread) + " 2026-11-21 12:30:" + std::to_string(100 + second).substr(1) +
           " [" + level + "] [" + function + "] " + message + " \n";
}

inline std::string enter(int thread, int second, const std::string &name) {
    return line(thread, second, "DEBUG", "call_stack_tracer::call_stack_tracer", ">>>>> " + name);
}

inline std::string leave(int thread, int second, const std::string &name) {
    return line(thread, second, "DEBUG", "call_stack_tracer::~call_stack_tracer", "<<<<< " + name);
}

template <typename Reader>
void feedInBlocks(Reader &reader, std::string_view log, std::size_t block) {
    for (; !log.empty(); log.remove_prefix(std::min(block, log.size())))
        reader.feed(log.substr(0, block));
    reader.finish();
}

// The log's calls in the order of their ends, as the listing shows them, without the day.
inline std::string listed(std::string_view log, const Filter &filter = {},
                          std::size_t block = 1 << 16) {
    struct : Sink {
        void take(Call &&call) override {
            wanted.pass(std::move(call), [this](Call &&passed) { text += listing.whole(passed); });
        }
        void takeForeign(std::uint64_t number, std::string_view foreign) override {
            text += listing.foreign(number, foreign);
        }
        Filter wanted;
        Listing listing{[](const char *english) { return english; }};
        std::string text;
    } sink;
    sink.wanted = filter;
    TraceReader reader(Mask::pins, sink);
    feedInBlocks(reader, log, block);
    constexpr std::string_view day = "  2026-11-21\n";
    if (const auto at = sink.text.find(day); at != sink.text.npos)
        sink.text.erase(at, day.size());
    return sink.text;
}

// A masked copy, made from blocks of that many bytes.
inline std::string redacted(std::string_view log, std::size_t block = 1 << 16) {
    std::string text;
    RedactingCopy copy([&](std::string_view stretch) { text += stretch; });
    feedInBlocks(copy, log, block);
    return text;
}

} // namespace tembra::trace::test
