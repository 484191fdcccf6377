// Splits a log into lines, in bounded memory.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tembra::trace {

// Some shells write UTF-16. Converts it to UTF-8 and drops a byte order mark; passes everything
// else as it is.
class Decoder {
public:
    // The result is valid until the next call. Empty until the encoding is known.
    std::string_view decode(std::string_view block);
    std::string_view finish();

private:
    enum class Encoding { unknown, bytes, littleEndian, bigEndian };

    void detect();
    void decodeUtf16();
    void append(char32_t character);

    Encoding m_encoding = Encoding::unknown;
    std::string m_input; // not converted yet
    std::string m_output;
    char32_t m_highSurrogate = 0;
};

struct RawLine {
    std::uint64_t number = 0; // from 1
    std::string_view text;    // without the line end
    std::string_view ending;  // "\n", "\r\n", or nothing at the end of the log
    bool cut = false;         // longer than LONGEST_LINE; the rest is dropped
};

class LineReader {
public:
    using Take = std::function<void(const RawLine &)>;
    static constexpr std::size_t LONGEST_LINE = std::size_t{1} << 20;

    // The views of a line are valid during the call of take.
    explicit LineReader(Take take) : m_take(std::move(take)) {}

    void feed(std::string_view block) { split(m_decoder.decode(block)); }
    // Passes on a last line without line end.
    void finish();

private:
    void split(std::string_view block);
    void pass(std::string_view line, bool cut);

    Take m_take;
    Decoder m_decoder;
    std::string m_carried; // the beginning of a line that continues in the next block
    bool m_cut = false;
    std::uint64_t m_number = 1;
};

} // namespace tembra::trace
