#include "tembrakey/trace/line.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace tembra::trace {

namespace {

constexpr std::string_view TAGS[] = {"ERROR", "WARN", "INFO", "DEBUG", "VERBOSE"};
constexpr std::string_view TIME_SHAPE = "dddd-dd-dd dd:dd:dd ";

int number(std::string_view digits) {
    int value = 0;
    for (const char c : digits)
        value = value * 10 + (c - '0');
    return value;
}

std::optional<std::int64_t> takeThread(std::string_view &text) {
    std::int64_t thread = 0;
    const char *const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, thread);
    if (parsed.ec != std::errc() || parsed.ptr == end || *parsed.ptr != ' ')
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()) + 1);
    return thread;
}

// Whether the text begins as a time does, as far as it goes.
bool hasTimeShape(std::string_view text) {
    const std::size_t length = std::min(text.size(), TIME_SHAPE.size());
    return std::equal(
        text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length), TIME_SHAPE.begin(),
        [](char c, char shape) { return shape == 'd' ? c >= '0' && c <= '9' : c == shape; });
}

std::optional<Time> takeTime(std::string_view &text) {
    using namespace std::chrono;
    if (text.size() < TIME_SHAPE.size() || !hasTimeShape(text))
        return std::nullopt;
    const auto field = [&](std::size_t offset, std::size_t length) {
        return number(text.substr(offset, length));
    };
    const year_month_day day{year{field(0, 4)}, month{static_cast<unsigned>(field(5, 2))},
                             std::chrono::day{static_cast<unsigned>(field(8, 2))}};
    if (!day.ok())
        return std::nullopt;
    const Time time =
        sys_days{day} + hours{field(11, 2)} + minutes{field(14, 2)} + seconds{field(17, 2)};
    text.remove_prefix(TIME_SHAPE.size());
    return time;
}

// "[word] "; the blank may be missing at the end of the text.
std::optional<std::string_view> takeBracketed(std::string_view &text) {
    const auto end = text.substr(0, 256).find(']');
    if (!text.starts_with('[') || end == text.npos ||
        (end + 1 < text.size() && text[end + 1] != ' '))
        return std::nullopt;
    const std::string_view word = text.substr(1, end - 1);
    text.remove_prefix(std::min(end + 2, text.size()));
    return word;
}

std::optional<Level> takeLevel(std::string_view &text) {
    const auto word = takeBracketed(text);
    const auto *tag = std::find(std::begin(TAGS), std::end(TAGS), word);
    if (tag == std::end(TAGS))
        return std::nullopt;
    return static_cast<Level>(tag - std::begin(TAGS) + 1);
}

} // namespace

std::string_view levelTag(Level level) {
    return TAGS[static_cast<std::size_t>(level) - 1];
}

std::string timeText(Time time) {
    const auto days = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day day(days);
    const std::chrono::hh_mm_ss clock(time - days);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                  static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text;
}

std::optional<Line> parseLine(std::string_view text) {
    const auto thread = takeThread(text);
    const auto time = thread ? takeTime(text) : std::nullopt;
    const auto level = time ? takeLevel(text) : std::nullopt;
    const auto function = level ? takeBracketed(text) : std::nullopt;
    if (!function)
        return std::nullopt;
    const bool complete = text.ends_with(' ');
    text.remove_suffix(complete ? 1 : 0);
    return Line{*thread, *time, *level, *function, text, complete};
}

bool isTornHead(std::string_view text) {
    return takeThread(text) && hasTimeShape(text);
}

} // namespace tembra::trace
