// What the measurements found, for people.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace tembra::bench {

template <typename... Values>
std::string text(const char *format, Values... values) {
    char buffer[256];
    std::snprintf(buffer, sizeof(buffer), format, values...);
    return buffer;
}

struct Row {
    std::string section;
    std::string what; // "subject / reference", when the value is the ratio of two times
    std::string value;
    std::string mark; // empty for none
    bool met = true;
    std::string taken = {}; // the two times
    std::string against = {};
};

class Table {
public:
    static Table &instance();

    void add(Row row) { rows.push_back(std::move(row)); }
    void print() const;

private:
    std::vector<Row> rows;
};

} // namespace tembra::bench
