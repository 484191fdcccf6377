#include "log/line_text.h"

#include "log/trace.h"
#include "platform/memory.h"
#include "platform/process.h"

#include <charconv>
#include <climits>
#include <cstdio>

namespace tembra {

namespace {

// Enough for a line without long texts.
constexpr std::size_t USUAL_CAPACITY = 512;

// printf's limit, and the most that one system call writes.
constexpr std::size_t LONGEST = INT_MAX;

} // namespace

LineText::LineText()
    : m_data(static_cast<char *>(std::malloc(USUAL_CAPACITY))),
      m_capacity(m_data ? USUAL_CAPACITY : 0) {}

LineText::~LineText() {
    platform::wipe(m_data, m_size);
    std::free(m_data);
}

// Adds room for length characters, or drops the line.
bool LineText::grow(std::size_t length) {
    const std::size_t size = m_size;
    const std::size_t capacity = size + length + USUAL_CAPACITY;
    char *grown = capacity <= LONGEST ? static_cast<char *>(std::malloc(capacity)) : nullptr;
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
    platform::wipe(m_data, m_capacity); // a partly formatted text is beyond m_size
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

void LineText::appendPointer(const void *pointer) {
    char text[platform::POINTER_CAPACITY];
    append({text, platform::pointerText(pointer, text)});
}

// Lines of successful calls need only these three conversions, which take a third of the C
// library's time here.
void LineText::appendFormatted(const char *format, std::va_list arguments) {
    while (const char *percent = std::strchr(format, '%')) {
        append({format, static_cast<std::size_t>(percent - format)});
        switch (percent[1]) {
        case 'd': appendNumber(va_arg(arguments, int)); break;
        case 'p': appendPointer(va_arg(arguments, void *)); break;
        case 's': append(shown(va_arg(arguments, const char *))); break;
        default: appendByLibrary(percent, arguments); return;
        }
        format = percent + 2;
    }
    append(format);
}

// Formats again after growing if there was no room.
void LineText::appendByLibrary(const char *format, std::va_list arguments) {
    if (!m_data)
        return;
    std::va_list again;
    va_copy(again, arguments);
    const int formatted = std::vsnprintf(m_data + m_size, room(), format, arguments);
    const std::size_t length = formatted < 0 ? 0 : static_cast<std::size_t>(formatted);
    if (formatted < 0)
        drop(); // longer than INT_MAX
    else if (length >= room() && grow(length + 1))
        std::vsnprintf(m_data + m_size, room(), format, again);
    va_end(again);
    if (m_data)
        m_size += length;
}

} // namespace tembra
