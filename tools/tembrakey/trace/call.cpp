#include "tembrakey/trace/call.h"

#include <cstdio>

namespace tembra::trace {

std::optional<std::int64_t> Call::duration() const {
    if (!entered || !returned || end < begin)
        return std::nullopt;
    return end - begin;
}

std::string timeText(std::int64_t second) {
    const std::int64_t days = (second >= 0 ? second : second - 86399) / 86400;
    const int clock = static_cast<int>(second - days * 86400);
    // The inverse of counting days with years that begin in March.
    const std::int64_t z = days + 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t dayOfEra = z - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t fromMarch = (5 * dayOfYear + 2) / 153;
    const std::int64_t month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
    const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", static_cast<int>(year),
                  static_cast<int>(month),
                  static_cast<int>(dayOfYear - (153 * fromMarch + 2) / 5 + 1), clock / 3600,
                  clock / 60 % 60, clock % 60);
    return text;
}

} // namespace tembra::trace
