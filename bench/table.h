// What the measurements found, for people.
#pragma once

#include <string>
#include <vector>

namespace tembra::bench {

struct Ratio {
    std::string section;
    std::string what; // "subject / reference"
    double ratio;
    double mark; // what the ratio must not exceed; 0 for none
    double nanoseconds;
    double against;
};

// A result that is no ratio of two times.
struct Figure {
    std::string section;
    std::string what;
    std::string value;
    std::string mark; // as text; empty for none
    bool met;
};

class Table {
public:
    static Table &instance();

    void add(const Ratio &row);
    void add(const Figure &row);
    void print() const;

private:
    struct Line {
        std::string section;
        std::string text;
        bool missed;
    };
    std::vector<Line> lines;
};

} // namespace tembra::bench
