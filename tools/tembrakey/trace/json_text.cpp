#include "tembrakey/trace/json_text.h"

#include <cstdio>

#include "tembrakey/trace/utf8.h"

namespace tembra::trace {

void JsonText::separate() {
    if (m_wantsComma)
        m_text += ',';
    m_wantsComma = true;
}

JsonText &JsonText::beginObject() {
    separate();
    m_text += '{';
    m_wantsComma = false;
    return *this;
}

JsonText &JsonText::endObject() {
    m_text += '}';
    m_wantsComma = true;
    return *this;
}

JsonText &JsonText::beginArray() {
    separate();
    m_text += '[';
    m_wantsComma = false;
    return *this;
}

JsonText &JsonText::endArray() {
    m_text += ']';
    m_wantsComma = true;
    return *this;
}

JsonText &JsonText::name(std::string_view name) {
    separate();
    quote(name);
    m_text += ':';
    m_wantsComma = false;
    return *this;
}

JsonText &JsonText::value(std::string_view text) {
    separate();
    quote(text);
    return *this;
}

JsonText &JsonText::value(bool truth) {
    separate();
    m_text += truth ? "true" : "false";
    return *this;
}

JsonText &JsonText::value(std::int64_t number) {
    separate();
    m_text += std::to_string(number);
    return *this;
}

JsonText &JsonText::value(std::uint64_t number) {
    separate();
    m_text += std::to_string(number);
    return *this;
}

JsonText &JsonText::null() {
    separate();
    m_text += "null";
    return *this;
}

void JsonText::quote(std::string_view text) {
    m_text += '"';
    while (!text.empty()) {
        const std::string_view character = takeCharacter(text);
        const auto byte = static_cast<unsigned char>(character[0]);
        if (character == "\"" || character == "\\") {
            m_text += '\\';
            m_text += character;
        } else if (byte < 0x20 || byte == 0x7F || character == "<" || character == "&") {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            m_text += escape;
        } else {
            m_text += character;
        }
    }
    m_text += '"';
}

} // namespace tembra::trace
