#include "plan.h"

#include <charconv>
#include <limits>

#include "function_names.h"

namespace tembra::fault_injection {

namespace {

constexpr std::uint64_t UNLIMITED = std::numeric_limits<std::uint64_t>::max();

std::string_view trim(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const auto first = text.find_first_not_of(space);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

// The whole text as a decimal or 0x hexadecimal number.
template <typename Number>
bool parseNumber(std::string_view text, Number &out) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const auto digits = hexadecimal ? text.substr(2) : text;
    const char *end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, out, hexadecimal ? 16 : 10);
    return error == std::errc() && stop == end && !digits.empty();
}

} // namespace

bool Plan::parseWhich(std::string_view text, Entry &entry) {
    if (text == "*") {
        entry.last = UNLIMITED;
        return true;
    }
    const bool open = text.ends_with('+');
    if (open)
        text.remove_suffix(1);
    if (!parseNumber(text, entry.first) || entry.first == 0)
        return false;
    entry.last = open ? UNLIMITED : entry.first;
    return true;
}

std::optional<Plan::Entry> Plan::parseEntry(std::string_view text) {
    const auto colon = text.find(':');
    const auto equals = text.find('=');
    if (colon == std::string_view::npos || equals == std::string_view::npos || equals < colon)
        return std::nullopt;
    Entry entry;
    const auto name = text.substr(0, colon);
    if (name != "*") {
        entry.function = functionIndex(name);
        if (*entry.function == std::size(FUNCTION_NAMES))
            return std::nullopt;
    }
    if (!parseWhich(text.substr(colon + 1, equals - colon - 1), entry) ||
        !parseNumber(text.substr(equals + 1), entry.code))
        return std::nullopt;
    return entry;
}

std::optional<Plan> Plan::parse(std::string_view text, std::string &badEntry) {
    Plan plan;
    if (trim(text).empty())
        return plan;
    for (;;) {
        const auto comma = text.find(',');
        const auto piece = trim(text.substr(0, comma));
        const auto entry = parseEntry(piece);
        if (!entry) {
            badEntry = piece;
            return std::nullopt;
        }
        plan.m_entries.push_back(*entry);
        if (comma == std::string_view::npos)
            return plan;
        text.remove_prefix(comma + 1);
    }
}

std::optional<std::uint32_t> Plan::faultFor(std::size_t function, CallNumbers numbers) const {
    for (const Entry &entry : m_entries) {
        const std::uint64_t number = entry.function ? numbers.ofFunction : numbers.ofAll;
        if ((!entry.function || *entry.function == function) && number >= entry.first &&
            number <= entry.last)
            return entry.code;
    }
    return std::nullopt;
}

} // namespace tembra::fault_injection
