// Masking of secrets, line after line. Nothing of a PIN passes, whatever characters it holds and
// however its line is torn.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "tembrakey/trace/line.h"
#include "tembrakey/trace/line_reader.h"

namespace tembra::trace {

enum class Mask {
    pins,
    pinsAndData // also every hex text that is no certificate and no public key
};

// A line that is no trace line can be the rest of a torn one. So after a line that ends before its
// secret is over, such lines are masked as a whole, until the same thread has written a line again,
// which it does only after the rest. Of a line longer than the reader's limit only a public dump
// passes beyond the first piece.
class Redactor {
public:
    explicit Redactor(Mask mask) : m_mask(mask) {}

    // The piece's text, masked; good until the next call. Wants the pieces of a log in their order.
    std::string_view redact(const Piece &piece);

private:
    enum class Rest { drop, passHex };

    std::string_view redactLine(const Line &line, const Piece &piece);
    bool redactPins(const Line &line, const Piece &piece, std::size_t head);
    bool redactDump(const Line &line, const Piece &piece, std::size_t head);
    std::string_view redactForeign(std::string_view text, bool isLast);
    std::string_view redactRest(const Piece &piece);
    void remember(std::int64_t thread);

    Mask m_mask;
    std::string m_masked;
    std::set<std::int64_t> m_open; // threads in the middle of a secret
    bool m_openToTheEnd = false;   // there were too many of them to tell apart
    bool m_nextIsSecret = false;   // the next line that is no trace line is the rest of one
    Rest m_rest = Rest::drop;
};

// Copies a log, masked, to where write puts it; lines without secrets keep every byte.
class RedactingCopy {
public:
    using Write = std::function<void(std::string_view)>;
    explicit RedactingCopy(Write write);

    void feed(std::string_view block) { m_reader.feed(block); }
    void finish();
    // Lines that did not stay as they were.
    std::uint64_t maskedLines() const { return m_maskedLines; }

private:
    void take(const Piece &piece);

    Write m_write;
    Redactor m_redactor;
    LineReader m_reader;
    std::string m_pending;
    std::uint64_t m_maskedLines = 0;
    bool m_isMasked = false;
};

} // namespace tembra::trace
