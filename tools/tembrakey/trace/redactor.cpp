#include "tembrakey/trace/redactor.h"

#include "tembrakey/trace/secrets.h"

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_OPEN_THREADS = 4096;
constexpr std::size_t BATCH = std::size_t{256} << 10;

} // namespace

void Redactor::remember(std::int64_t thread) {
    m_open.insert(thread);
    m_openToTheEnd |= m_open.size() >= MOST_OPEN_THREADS;
    if (m_openToTheEnd)
        m_open.clear();
}

std::string_view Redactor::redact(const Piece &piece) {
    if (!piece.first)
        return redactRest(piece);
    m_rest = Rest::drop;
    m_masked.clear();
    if (const auto line = parseLine(piece.text))
        return redactLine(*line, piece);
    return redactForeign(piece.text, piece.last);
}

std::string_view Redactor::redactLine(const Line &line, const Piece &piece) {
    m_open.erase(line.thread);
    const auto head = static_cast<std::size_t>(line.message.data() - piece.text.data());
    if (redactPins(line, piece, head) || redactDump(line, piece, head))
        return m_masked;
    // A line of arguments that ends before its PIN.
    if (writesPins(line.function) && (line.level == Level::information || !line.complete))
        remember(line.thread);
    if (piece.last || m_rest == Rest::passHex)
        return piece.text;
    m_masked = piece.text;
    return m_masked += MASK_TEXT;
}

// head is where the message begins. False when the line shows no PIN.
bool Redactor::redactPins(const Line &line, const Piece &piece, std::size_t head) {
    const std::size_t pin = findPin(line.message);
    if (pin == NOWHERE) {
        // Another thread's line that was torn and ran into this one.
        m_nextIsSecret |= line.message.find("Pwd]") != NOWHERE;
        return false;
    }
    const std::size_t tail = line.complete && piece.last ? findPinTail(line.message, pin) : NOWHERE;
    m_masked = piece.text.substr(0, head + pin);
    if (tail == NOWHERE) {
        m_masked += MASK_TEXT;
        remember(line.thread);
    } else {
        m_masked += maskPins(line.message.substr(pin, tail - pin), writesTwoPins(line.function));
        m_masked += piece.text.substr(head + tail);
    }
    return true;
}

// False when the line stays as it is.
bool Redactor::redactDump(const Line &line, const Piece &piece, std::size_t head) {
    const Dump dump = findDump(line.message);
    const bool reachesEnd = dump.end == line.message.size();
    if (dump.name != NOWHERE && reachesEnd && !piece.last)
        m_rest = Rest::passHex;
    if (m_mask == Mask::pins)
        return false;
    if (dump.name == NOWHERE) {
        const bool endsEarly = !line.complete || line.message.find("[length:") != NOWHERE;
        if (line.level == Level::verbose && endsEarly)
            remember(line.thread);
        return false;
    }
    const bool isPublic = line.level == Level::verbose &&
                          isPublicDump(line.function, line.message.substr(0, dump.name));
    if (isPublic && reachesEnd && (dump.whole || !piece.last))
        return false;
    if (!dump.whole && !(dump.begin == dump.end && line.complete))
        remember(line.thread);
    if (dump.begin == line.message.size())
        return false; // the log left the bytes out by itself
    m_rest = Rest::drop;
    m_masked = piece.text.substr(0, head + dump.begin);
    m_masked += MASK_TEXT;
    if (line.complete && piece.last)
        m_masked += ' ';
    return true;
}

std::string_view Redactor::redactForeign(std::string_view text, bool isLast) {
    const bool isRest = m_openToTheEnd || !m_open.empty() || m_nextIsSecret;
    m_nextIsSecret = false;
    if (const auto thread = tornHeadThread(text))
        remember(*thread);
    if (text.empty())
        return text;
    if (isRest || findPin(text) != NOWHERE || text.find("pretrynum") != NOWHERE)
        return m_masked = MASK_TEXT;
    m_nextIsSecret = text.find("Pwd]") != NOWHERE;
    const std::size_t secret = findForeignSecret(text);
    const std::string_view visible = text.substr(0, secret);
    if (m_mask == Mask::pinsAndData)
        maskHex(visible, m_masked);
    else
        m_masked = visible;
    if (secret != NOWHERE || !isLast)
        m_masked += MASK_TEXT;
    return m_masked;
}

std::string_view Redactor::redactRest(const Piece &piece) {
    if (m_rest == Rest::drop)
        return {};
    std::size_t end = piece.text.find_first_not_of("0123456789ABCDEFabcdef");
    if (end == NOWHERE || (piece.last && piece.text.substr(end) == " "))
        return piece.text;
    m_rest = Rest::drop;
    m_masked = piece.text.substr(0, end);
    m_masked += MASK_TEXT;
    return m_masked;
}

RedactingCopy::RedactingCopy(Write write)
    : m_write(std::move(write)), m_redactor(Mask::pinsAndData),
      m_reader([this](const Piece &piece) { take(piece); }) {}

void RedactingCopy::take(const Piece &piece) {
    const std::string_view text = m_redactor.redact(piece);
    m_isMasked |= text != piece.text;
    m_pending += text;
    m_pending += piece.ending;
    if (piece.last) {
        m_maskedLines += m_isMasked ? 1 : 0;
        m_isMasked = false;
    }
    if (m_pending.size() >= BATCH) {
        m_write(m_pending);
        m_pending.clear();
    }
}

void RedactingCopy::finish() {
    m_reader.finish();
    m_write(m_pending);
    m_pending.clear();
}

} // namespace tembra::trace
