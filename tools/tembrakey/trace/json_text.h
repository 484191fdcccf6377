// JSON as it is written, without a tree in memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tembra::trace {

// Commas come by themselves; names and values are UTF-8, and bytes that are not come out as
// replacement characters. The text can stand inside an HTML script element.
class JsonText {
public:
    JsonText &beginObject();
    JsonText &endObject();
    JsonText &beginArray();
    JsonText &endArray();
    JsonText &name(std::string_view name);
    JsonText &value(std::string_view text);
    JsonText &value(const char *text) { return value(std::string_view(text)); }
    JsonText &value(bool truth);
    JsonText &value(std::int64_t number);
    JsonText &value(std::uint64_t number);
    JsonText &null();

    template <typename T>
    JsonText &member(std::string_view memberName, const T &memberValue) {
        return name(memberName).value(memberValue);
    }

    const std::string &text() const { return m_text; }
    // Forgets the text, which has been written out; what follows continues it.
    void clear() { m_text.clear(); }

private:
    void separate();
    void quote(std::string_view text);

    std::string m_text;
    bool m_wantsComma = false;
};

} // namespace tembra::trace
