// A line of the trace while it is put together: on the heap, and wiped before it is freed, since it
// can show a PIN or plaintext.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace tembra {

// Once memory was short, or a text too long, the line is dropped: data() is null and stays so.
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
    // printf's text.
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
