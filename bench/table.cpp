#include "table.h"

namespace tembra::bench {

Table &Table::instance() {
    static Table table;
    return table;
}

void Table::print() const {
    constexpr const char *LINE = "%10s  %-9s %-6s %10s %10s  %s\n";
    std::printf(LINE, "ratio", "mark", "", "a call", "against", "what / against what");
    const std::string *section = nullptr;
    int missed = 0;
    for (const Row &row : rows) {
        if (!section || *section != row.section)
            std::printf("\n%s\n", row.section.c_str());
        section = &row.section;
        const char *result = row.mark.empty() ? "" : row.met ? "met" : "MISSED";
        std::printf(LINE, row.value.c_str(), row.mark.c_str(), result, row.taken.c_str(),
                    row.against.c_str(), row.what.c_str());
        missed += row.met ? 0 : 1;
    }
    std::printf("\nmarks missed: %d\n", missed);
}

} // namespace tembra::bench
