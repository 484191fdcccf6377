// Builds a line of the trace. The line can contain a PIN or plaintext, so it is wiped before it is
// freed.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace tembra {

// If memory runs out or a text is too long, the line is dropped: data() remains null.
class LineText {
public:
    LineText();
    ~LineText();
    LineText(const LineText &) = delete;
    LineText &operator=(const LineText &) = delete;

    const char *data() const { return m_data; }
    std::size_t size() const { return m_size; }

    void append(std::string_view text) {
        if (!m_data || (text.size() > room() && !grow(text.size())))
            return;
        std::memcpy(m_data + m_size, text.data(), text.size());
        m_size += text.size();
    }
    void appendNumber(long value);
    // Formats like printf.
    void appendFormatted(const char *format, std::va_list arguments);

private:
    void appendPointer(const void *pointer);
    void appendByLibrary(const char *format, std::va_list arguments);
    std::size_t room() const { return m_capacity - m_size; }
    bool grow(std::size_t length);
    void drop();

    char *m_data;
    std::size_t m_size = 0;
    std::size_t m_capacity;
};

} // namespace tembra
