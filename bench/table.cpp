#include "table.h"

#include <algorithm>
#include <cstdio>

namespace tembra::bench {

namespace {

template <typename... Values>
std::string text(const char *format, Values... values) {
    char buffer[256];
    std::snprintf(buffer, sizeof(buffer), format, values...);
    return buffer;
}

std::string timeText(double nanoseconds) {
    if (nanoseconds < 1e3)
        return text("%.1f ns", nanoseconds);
    if (nanoseconds < 1e6)
        return text("%.2f us", nanoseconds / 1e3);
    return text("%.2f ms", nanoseconds / 1e6);
}

std::string line(const std::string &value, const std::string &mark, bool met,
                 const std::string &taken, const std::string &against, const std::string &what) {
    return text("%10s  %-9s %-6s %10s %10s  %s\n", value.c_str(), mark.c_str(),
                mark.empty() ? "" : (met ? "met" : "MISSED"), taken.c_str(), against.c_str(),
                what.c_str());
}

} // namespace

Table &Table::instance() {
    static Table table;
    return table;
}

void Table::add(const Ratio &row) {
    const bool met = row.mark == 0 || row.ratio <= row.mark;
    lines.push_back({row.section,
                     line(text(row.ratio < 10 ? "%.3f" : "%.0f", row.ratio),
                          row.mark == 0 ? "" : text("<= %.2f", row.mark), met,
                          timeText(row.nanoseconds), timeText(row.against), row.what),
                     !met});
}

void Table::add(const Figure &row) {
    lines.push_back({row.section, line(row.value, row.mark, row.met, "", "", row.what), !row.met});
}

void Table::print() const {
    std::printf("%10s  %-9s %-6s %10s %10s  %s\n", "ratio", "mark", "", "a call", "against",
                "what / against what");
    const std::string *section = nullptr;
    for (const Line &row : lines) {
        if (!section || *section != row.section)
            std::printf("\n%s\n", row.section.c_str());
        section = &row.section;
        std::fputs(row.text.c_str(), stdout);
    }
    const auto missed =
        std::count_if(lines.begin(), lines.end(), [](const Line &row) { return row.missed; });
    std::printf("\nmarks missed: %d\n", static_cast<int>(missed));
}

} // namespace tembra::bench
