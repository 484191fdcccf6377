#include "tembrakey/io/record.h"

#include <nlohmann/json.hpp>

namespace tembra::tool {

Record &Record::add(std::string name, std::string value) {
    m_fields.push_back({std::move(name), Value(std::move(value))});
    return *this;
}

Record &Record::add(std::string name, int value) {
    return add(std::move(name), static_cast<std::int64_t>(value));
}

Record &Record::add(std::string name, std::int64_t value) {
    m_fields.push_back({std::move(name), Value(value)});
    return *this;
}

Record &Record::add(std::string name, bool value) {
    m_fields.push_back({std::move(name), Value(value)});
    return *this;
}

Record &Record::add(std::string name, List value) {
    m_fields.push_back({std::move(name), Value(std::move(value))});
    return *this;
}

namespace {

using Json = nlohmann::ordered_json;

Json asJson(const Record &record) {
    struct Convert {
        Json operator()(const std::string &text) const { return text; }
        Json operator()(std::int64_t number) const { return number; }
        Json operator()(bool truth) const { return truth; }
        Json operator()(const Record::List &list) const {
            Json array = Json::array();
            for (const Record &one : list)
                array.push_back(asJson(one));
            return array;
        }
    };
    Json object = Json::object();
    for (const Record::Field &field : record.fields())
        object[field.name] = std::visit(Convert(), field.value);
    return object;
}

} // namespace

std::string toJson(const Record &record) {
    return asJson(record).dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace tembra::tool
