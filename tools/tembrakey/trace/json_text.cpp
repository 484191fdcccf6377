#include "tembrakey/trace/json_text.h"

#include <cstdio>

#include "tembrakey/trace/utf8.h"

namespace tembra::trace {

void JsonText::separate() {
    if (wantsComma_)
        text_ += ',';
    wantsComma_ = true;
}

JsonText &JsonText::beginObject() {
    separate();
    text_ += '{';
    wantsComma_ = false;
    return *this;
}

JsonText &JsonText::endObject() {
    text_ += '}';
    wantsComma_ = true;
    return *this;
}

JsonText &JsonText::beginArray() {
    separate();
    text_ += '[';
    wantsComma_ = false;
    return *this;
}

JsonText &JsonText::endArray() {
    text_ += ']';
    wantsComma_ = true;
    return *this;
}

JsonText &JsonText::name(std::string_view name) {
    separate();
    quote(name);
    text_ += ':';
    wantsComma_ = false;
    return *this;
}

JsonText &JsonText::value(std::string_view text) {
    separate();
    quote(text);
    return *this;
}

JsonText &JsonText::value(bool truth) {
    separate();
    text_ += truth ? "true" : "false";
    return *this;
}

JsonText &JsonText::value(std::int64_t number) {
    separate();
    text_ += std::to_string(number);
    return *this;
}

JsonText &JsonText::value(std::uint64_t number) {
    separate();
    text_ += std::to_string(number);
    return *this;
}

JsonText &JsonText::null() {
    separate();
    text_ += "null";
    return *this;
}

void JsonText::quote(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
        const std::string_view character = takeCharacter(text);
        const auto byte = static_cast<unsigned char>(character[0]);
        if (character == "\"" || character == "\\") {
            text_ += '\\';
            text_ += character;
        } else if (byte < 0x20 || byte == 0x7F || character == "<" || character == "&") {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            text_ += escape;
        } else {
            text_ += character;
        }
    }
    text_ += '"';
}

} // namespace tembra::trace
