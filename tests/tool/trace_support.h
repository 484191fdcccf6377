// What the tests of the trace reader share.
#pragma once

#include <string>
#include <string_view>

#include "tembrakey/trace/filter.h"
#include "tembrakey/trace/redactor.h"
#include "tembrakey/trace/trace_reader.h"

namespace tembra::trace::test {

// "7 2026-11-21 12:30:SS [LEVEL] [function] message \n"
std::string line(int thread, int second, std::string_view level, std::string_view function,
                 std::string_view message);
std::string enter(int thread, int second, std::string_view name);
std::string leave(int thread, int second, std::string_view name);

// The log's calls in the order of their ends, as the listing shows them, without the day.
std::string listed(std::string_view log, const Filter &filter = {}, std::size_t block = 1 << 16);

// A masked copy, made from blocks of that many bytes.
std::string redacted(std::string_view log, std::size_t block = 1 << 16);

inline const char *untranslated(const char *english) {
    return english;
}

} // namespace tembra::trace::test
