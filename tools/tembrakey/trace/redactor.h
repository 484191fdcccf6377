// Masks secrets, line after line. No part of a PIN passes, whatever characters it has and however
// its line is torn.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tembrakey/trace/line_reader.h"
#include "tembrakey/trace/secrets.h"

namespace tembra::trace {

// After a line that ends inside a secret, or that was torn before it could show one, everything is
// masked up to the next trace line.
class Redactor {
public:
    explicit Redactor(Mask mask) : m_mask(mask) {}

    // The masked text is valid until the next call. Takes the lines of a log in their order.
    std::string_view redact(const RawLine &line);
    // Whether the last line was changed.
    bool hasMasked() const { return m_hasMasked; }

private:
    std::string_view redactLine(const Line &line, std::string_view text);
    std::string_view redactForeign(std::string_view text);
    std::string_view replace(std::string text);

    Mask m_mask;
    std::string m_masked;
    bool m_hasMasked = false;
    bool m_isInside = false; // a secret may continue
};

// Copies a log with its secrets masked. Lines without secrets keep every byte.
class RedactingCopy {
public:
    using Write = std::function<void(std::string_view)>;
    explicit RedactingCopy(Write write);

    void feed(std::string_view block) { m_reader.feed(block); }
    void finish();
    std::uint64_t maskedLines() const { return m_maskedLines; }
    // False if the log has no trace line; then nothing was written.
    bool isTrace() const { return m_state == State::isTrace; }

private:
    enum class State { searching, isTrace, refused };

    void take(const RawLine &line);
    void flush();

    Write m_write;
    Redactor m_redactor;
    LineReader m_reader;
    std::string m_pending;
    std::uint64_t m_maskedLines = 0;
    State m_state = State::searching;
};

} // namespace tembra::trace
