#include "tembrakey/trace/redactor.h"

namespace tembra::trace {

namespace {

constexpr std::size_t BATCH = std::size_t{256} << 10;
constexpr std::size_t MOST_BEFORE_TRACE = std::size_t{64} << 20;

} // namespace

std::string_view Redactor::replace(std::string text) {
    m_hasMasked = true;
    m_masked = std::move(text);
    return m_masked;
}

std::string_view Redactor::redact(const RawLine &raw) {
    m_hasMasked = false;
    const auto line = parseLine(raw.text);
    const std::string_view text = line ? redactLine(*line, raw.text) : redactForeign(raw.text);
    return raw.cut ? replace(std::string(text).append(MASK_TEXT)) : text;
}

std::string_view Redactor::redactLine(const Line &line, std::string_view text) {
    const Secret secret = findSecret(line, m_mask);
    m_isInside = secret.isOpen;
    if (secret.begin == std::string_view::npos)
        return text;
    const auto head = static_cast<std::size_t>(line.message.data() - text.data());
    return replace(std::string(text.substr(0, head + secret.begin)) + maskedSecret(line, secret) +
                   std::string(text.substr(head + secret.end)));
}

std::string_view Redactor::redactForeign(std::string_view text) {
    if (text.empty())
        return text;
    // Zero bytes: text in another encoding, which hides what it says.
    if (m_isInside || looksLikePinLine(text) || text.find('\0') != text.npos) {
        m_isInside |= looksLikePinLine(text);
        return replace(std::string(MASK_TEXT));
    }
    m_isInside = isTornHead(text);
    std::string masked = maskForeign(text, m_mask);
    return masked == text ? text : replace(std::move(masked));
}

RedactingCopy::RedactingCopy(Write write)
    : m_write(std::move(write)), m_redactor(Mask::pinsAndData),
      m_reader([this](const RawLine &line) { take(line); }) {}

// Writes nothing before the first trace line.
void RedactingCopy::take(const RawLine &line) {
    if (m_state == State::refused)
        return;
    m_pending += m_redactor.redact(line);
    m_pending += line.ending;
    m_maskedLines += m_redactor.hasMasked() ? 1 : 0;
    if (m_state == State::searching && parseLine(line.text))
        m_state = State::isTrace;
    if (m_state == State::isTrace && m_pending.size() >= BATCH)
        flush();
    else if (m_pending.size() > MOST_BEFORE_TRACE)
        m_state = State::refused;
}

void RedactingCopy::flush() {
    m_write(m_pending);
    m_pending.clear();
}

void RedactingCopy::finish() {
    m_reader.finish();
    if (m_state == State::isTrace)
        flush();
}

} // namespace tembra::trace
