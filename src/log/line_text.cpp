#include "log/line_text.h"

#include "platform/memory.h"

#include <charconv>
#include <cstdio>

namespace tembra {

namespace {

// Enough for every line without a long text.
constexpr std::size_t USUAL_CAPACITY = 512;

} // namespace

LineText::LineText(std::size_t textLength)
    : m_data(static_cast<char *>(std::malloc(USUAL_CAPACITY + textLength))),
      m_capacity(m_data ? USUAL_CAPACITY + textLength : 0) {}

LineText::~LineText() {
    platform::wipe(m_data, m_size);
    std::free(m_data);
}

// Makes room for length more characters; false when memory is short.
bool LineText::grow(std::size_t length) {
    const std::size_t size = m_size;
    const std::size_t capacity = size + length + USUAL_CAPACITY;
    char *grown = static_cast<char *>(std::malloc(capacity));
    if (grown)
        std::memcpy(grown, m_data, size);
    drop();
    if (!grown)
        return false;
    m_data = grown;
    m_size = size;
    m_capacity = capacity;
    return true;
}

void LineText::drop() {
    platform::wipe(m_data, m_capacity); // what was formatted in part lies beyond m_size
    std::free(m_data);
    m_data = nullptr;
    m_size = 0;
    m_capacity = 0;
}

void LineText::appendNumber(long value) {
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof(digits), value);
    append({digits, static_cast<std::size_t>(end.ptr - digits)});
}

void LineText::appendFormatted(const char *format, std::va_list arguments) {
    if (!m_data)
        return;
    std::va_list again;
    va_copy(again, arguments);
    const int formatted = std::vsnprintf(m_data + m_size, room(), format, arguments);
    const std::size_t length = formatted < 0 ? 0 : static_cast<std::size_t>(formatted);
    if (formatted < 0)
        drop(); // longer than an int can say
    else if (length >= room() && grow(length + 1))
        std::vsnprintf(m_data + m_size, room(), format, again);
    va_end(again);
    if (m_data)
        m_size += length;
}

} // namespace tembra
