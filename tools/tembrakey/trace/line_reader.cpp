#include "tembrakey/trace/line_reader.h"

namespace tembra::trace {

namespace {

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
constexpr std::size_t BYTES_TO_DETECT = 4;

} // namespace

std::string_view Decoder::decode(std::string_view block) {
    if (m_encoding == Encoding::bytes)
        return block;
    m_output.clear();
    m_input += block;
    if (m_encoding == Encoding::unknown && m_input.size() >= BYTES_TO_DETECT)
        detect();
    if (m_encoding == Encoding::bytes)
        m_output.swap(m_input);
    else if (m_encoding != Encoding::unknown)
        decodeUtf16();
    return m_output;
}

std::string_view Decoder::finish() {
    m_output = m_encoding == Encoding::unknown ? m_input : std::string();
    return m_output;
}

// Without a mark, a trace line in UTF-16 shows by the zero beside its first digit.
void Decoder::detect() {
    const bool isLittle = m_input.starts_with("\xFF\xFE") || (m_input[0] != 0 && m_input[1] == 0);
    const bool isBig = m_input.starts_with("\xFE\xFF") || (m_input[0] == 0 && m_input[1] != 0);
    m_encoding = isLittle ? Encoding::littleEndian : isBig ? Encoding::bigEndian : Encoding::bytes;
    if (m_input[0] == '\xFF' || m_input[0] == '\xFE')
        m_input.erase(0, isLittle || isBig ? 2 : 0);
    else if (m_input.starts_with(UTF8_MARK))
        m_input.erase(0, UTF8_MARK.size());
}

void Decoder::decodeUtf16() {
    const std::size_t low = m_encoding == Encoding::littleEndian ? 0 : 1;
    std::size_t offset = 0;
    for (; offset + 1 < m_input.size(); offset += 2) {
        const auto unit =
            static_cast<char32_t>(static_cast<unsigned char>(m_input[offset + low]) |
                                  static_cast<unsigned char>(m_input[offset + 1 - low]) << 8);
        const bool isSecond = unit >= 0xDC00 && unit <= 0xDFFF;
        if (m_highSurrogate != 0 && !isSecond)
            append(0xFFFD);
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            m_highSurrogate = unit;
            continue;
        }
        if (!isSecond)
            append(unit);
        else if (m_highSurrogate == 0)
            append(0xFFFD);
        else
            append(0x10000 + ((m_highSurrogate - 0xD800) << 10) + (unit - 0xDC00));
        m_highSurrogate = 0;
    }
    m_input.erase(0, offset);
}

void Decoder::append(char32_t character) {
    const auto put = [this](char32_t byte) { m_output += static_cast<char>(byte); };
    if (character < 0x80)
        return put(character);
    const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr char32_t LEADS[] = {0, 0xC0, 0xE0, 0xF0};
    put(LEADS[more] | character >> (6 * more));
    for (int i = more - 1; i >= 0; --i)
        put(0x80 | (character >> (6 * i) & 0x3F));
}

void LineReader::pass(std::string_view line, bool cut) {
    const std::size_t ending = line.ends_with("\r\n") ? 2 : line.ends_with('\n') ? 1 : 0;
    const std::string_view text = line.substr(0, line.size() - ending);
    cut = cut || text.size() > LONGEST_LINE;
    m_take({m_number++, text.substr(0, LONGEST_LINE), line.substr(text.size()), cut});
}

void LineReader::split(std::string_view block) {
    while (!block.empty()) {
        const auto end = block.find('\n');
        const std::string_view part = block.substr(0, end == block.npos ? end : end + 1);
        block.remove_prefix(part.size());
        if (end != block.npos && m_carried.empty()) {
            pass(part, false);
            continue;
        }
        m_carried += part;
        if (end != block.npos) {
            pass(m_carried, m_cut);
            m_carried.clear();
            m_cut = false;
        } else if (m_carried.size() > 2 * LONGEST_LINE) {
            // What is dropped lies beyond what is passed on; the last byte may be a CR.
            m_carried.erase(LONGEST_LINE, m_carried.size() - LONGEST_LINE - 1);
            m_cut = true;
        }
    }
}

void LineReader::finish() {
    split(m_decoder.finish());
    if (!m_carried.empty())
        pass(m_carried, m_cut);
    m_carried.clear();
}

} // namespace tembra::trace
