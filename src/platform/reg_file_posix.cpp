#include "platform/reg_file.h"

namespace tembra::platform {

namespace {

constexpr char BEYOND_ASCII = '?';

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

} // namespace

RegFile::RegFile(const char *path) : m_file(std::fopen(path, "rb")) {
    if (!m_file)
        return;
    unsigned char mark[3] = {};
    const std::size_t read = std::fread(mark, 1, sizeof(mark), m_file);
    long start = 0;
    if (read >= 2 && mark[0] == 0xFF && mark[1] == 0xFE) {
        m_utf16 = true;
        start = 2;
    } else if (read == 3 && mark[0] == 0xEF && mark[1] == 0xBB && mark[2] == 0xBF) {
        start = 3;
    }
    std::fseek(m_file, start, SEEK_SET);
}

RegFile::~RegFile() {
    if (m_file)
        std::fclose(m_file);
}

int RegFile::nextUnit() {
    if (!m_utf16)
        return nextUtf8Unit();
    const int low = std::fgetc(m_file);
    const int high = std::fgetc(m_file);
    if (low == EOF || high == EOF)
        return EOF;
    return high == 0 && low < 0x80 ? low : BEYOND_ASCII;
}

int RegFile::nextUtf8Unit() {
    if (m_pendingUnit) {
        m_pendingUnit = false;
        return BEYOND_ASCII;
    }
    int byte = std::fgetc(m_file);
    while (byte != EOF && (byte & 0xC0) == 0x80) // a continuation byte
        byte = std::fgetc(m_file);
    if (byte == EOF || byte < 0x80)
        return byte;
    m_pendingUnit = byte >= 0xF0;
    return BEYOND_ASCII;
}

void RegFile::append(char unit) {
    if (m_length == 0 && isBlank(unit))
        return;
    if (m_length + 1 < LINE_CAPACITY)
        m_line[m_length++] = unit;
}

void RegFile::trimEnd() {
    while (m_length > 0 && isBlank(m_line[m_length - 1]))
        --m_length;
}

const char *RegFile::nextLine() {
    m_length = 0;
    bool any = false;
    for (;;) {
        const int unit = nextUnit();
        if (unit != EOF && unit != '\n') {
            any = true;
            append(static_cast<char>(unit));
            continue;
        }
        trimEnd();
        if (unit == '\n' && m_length > 0 && m_line[m_length - 1] == '\\') {
            --m_length;
            continue;
        }
        if (unit == EOF && !any)
            return nullptr;
        m_line[m_length] = '\0';
        return m_line;
    }
}

} // namespace tembra::platform
