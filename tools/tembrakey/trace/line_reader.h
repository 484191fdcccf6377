// Lines out of a stream of blocks, in bounded memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tembra::trace {

// A line; or, of a line longer than the reader's limit, a stretch of at most that many bytes.
struct Piece {
    std::uint64_t line;      // counted from 1
    std::string_view text;   // without the line end
    std::string_view ending; // "\n", "\r\n", or nothing at the end of the log and inside a line
    bool first;
    bool last;
};

class LineReader {
public:
    using Take = std::function<void(const Piece &)>;
    static constexpr std::size_t USUAL_LIMIT = std::size_t{64} << 10;

    // The pieces' views hold only during the call of take.
    explicit LineReader(Take take, std::size_t limit = USUAL_LIMIT)
        : m_take(std::move(take)), m_limit(limit) {}

    void feed(std::string_view block);
    // After the last block: a line without line end comes out.
    void finish();

private:
    void pass(std::string_view line);
    void passAllButTheEnd();
    void hand(std::string_view text, std::string_view ending, bool last);

    Take m_take;
    std::size_t m_limit;
    std::string m_carried; // the beginning of a line that goes on in the next block
    std::uint64_t m_line = 1;
    bool m_first = true;
};

} // namespace tembra::trace
