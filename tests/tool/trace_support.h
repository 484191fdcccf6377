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

// English, with {1}, {2} ... replaced by the values.
inline std::string inEnglish(const char *english, std::initializer_list<std::string_view> values) {
    std::string text = english;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string hole = "{" + std::to_string(i + 1) + "}";
        if (const auto found = text.find(hole); found != text.npos)
            text.replace(found, hole.size(), values.begin()[i]);
    }
    return text;
}

// The calls of a log in the order of their ends, as the listing shows them, without the day, after
// the table of failures.
inline std::string listed(std::string_view log, const Filter &filter = {},
                          std::size_t block = 1 << 16) {
    Listing listing(&inEnglish);
    std::string calls;
    TraceReader reader(
        Mask::pins, filter, [&](Call &&call) { calls += listing.whole(call); },
        [&](std::uint64_t number, std::string_view text) {
            calls += listing.foreign(number, text);
        });
    feedInBlocks(reader, log, block);
    std::string text = failuresText(reader.failures(), &inEnglish) + calls;
    for (const std::string day : {"  2026-11-21\n", "2026-11-21 "})
        for (auto found = text.find(day); found != text.npos; found = text.find(day))
            text.erase(found, day.size());
    return text;
}

// A masked copy, made from blocks of that many bytes.
inline std::string redacted(std::string_view log, std::size_t block = 1 << 16) {
    std::string text;
    RedactingCopy copy([&](std::string_view stretch) { text += stretch; });
    feedInBlocks(copy, log, block);
    return text;
}

} // namespace tembra::trace::test
