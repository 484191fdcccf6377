#include "tembrakey/trace/line.h"

#include <array>
#include <charconv>

namespace tembra::trace {

namespace {

constexpr std::array<std::string_view, 5> TAGS = {"ERROR", "WARN", "INFO", "DEBUG", "VERBOSE"};
constexpr std::string_view TIME_SHAPE = "dddd-dd-dd dd:dd:dd";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int number(std::string_view digits) {
    int value = 0;
    for (const char c : digits)
        value = value * 10 + (c - '0');
    return value;
}

// Days from 1970-01-01, in the Gregorian calendar, with years that begin in March.
std::int64_t daysOf(int year, int month, int day) {
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t fromMarch = (month + 9) % 12;
    return y * 365 + y / 4 - y / 100 + y / 400 + (153 * fromMarch + 2) / 5 + day - 1 - 719468;
}

std::optional<std::int64_t> takeThread(std::string_view &text) {
    std::int64_t thread = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), thread);
    if (error != std::errc() || end == text.data() + text.size() || *end != ' ')
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()) + 1);
    return thread;
}

std::optional<std::int64_t> takeSecond(std::string_view &text) {
    if (text.size() <= TIME_SHAPE.size() || text[TIME_SHAPE.size()] != ' ')
        return std::nullopt;
    for (std::size_t i = 0; i < TIME_SHAPE.size(); ++i)
        if (TIME_SHAPE[i] == 'd' ? !isDigit(text[i]) : text[i] != TIME_SHAPE[i])
            return std::nullopt;
    const int month = number(text.substr(5, 2));
    const int day = number(text.substr(8, 2));
    if (month < 1 || month > 12 || day < 1 || day > 31)
        return std::nullopt;
    const std::int64_t days = daysOf(number(text.substr(0, 4)), month, day);
    const std::int64_t second = days * 86400 + std::int64_t{number(text.substr(11, 2))} * 3600 +
                                std::int64_t{number(text.substr(14, 2))} * 60 +
                                number(text.substr(17, 2));
    text.remove_prefix(TIME_SHAPE.size() + 1);
    return second;
}

// "[word] "; the blank may be missing where the text ends.
std::optional<std::string_view> takeBracketed(std::string_view &text) {
    if (text.empty() || text[0] != '[')
        return std::nullopt;
    const auto end = text.substr(0, 256).find(']');
    if (end == std::string_view::npos || (end + 1 < text.size() && text[end + 1] != ' '))
        return std::nullopt;
    const std::string_view word = text.substr(1, end - 1);
    text.remove_prefix(std::min(end + 2, text.size()));
    return word;
}

std::optional<Level> levelOf(std::string_view tag) {
    for (std::size_t i = 0; i < TAGS.size(); ++i)
        if (tag == TAGS[i])
            return static_cast<Level>(i + 1);
    return std::nullopt;
}

} // namespace

std::string_view levelTag(Level level) {
    return TAGS[static_cast<std::size_t>(level) - 1];
}

std::optional<Line> parseLine(std::string_view text) {
    const auto thread = takeThread(text);
    const auto second = thread ? takeSecond(text) : std::nullopt;
    const auto tag = second ? takeBracketed(text) : std::nullopt;
    const auto level = tag ? levelOf(*tag) : std::nullopt;
    const auto function = level ? takeBracketed(text) : std::nullopt;
    if (!function)
        return std::nullopt;
    const bool complete = !text.empty() && text.back() == ' ';
    if (complete)
        text.remove_suffix(1);
    return Line{*thread, *second, *level, *function, text, complete};
}

std::optional<std::int64_t> tornHeadThread(std::string_view text) {
    const auto thread = takeThread(text);
    return thread && takeSecond(text) ? thread : std::nullopt;
}

} // namespace tembra::trace
