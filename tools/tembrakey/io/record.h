// A command's result as named values, the same for JSON and for scripts of ours.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace tembra::tool {

class Record {
public:
    using List = std::vector<Record>;
    using Value = std::variant<std::string, std::int64_t, bool, List>;
    struct Field {
        std::string name;
        Value value;
    };

    Record &add(std::string name, std::string value);
    Record &add(std::string name, const char *value) {
        return add(std::move(name), std::string(value));
    }
    Record &add(std::string name, int value);
    Record &add(std::string name, std::int64_t value);
    Record &add(std::string name, bool value);
    Record &add(std::string name, List value);

    const std::vector<Field> &fields() const { return m_fields; }

private:
    std::vector<Field> m_fields;
};

// Bytes that are no UTF-8 come out as replacement characters. Indented by two blanks.
std::string toJson(const Record &record);

} // namespace tembra::tool
