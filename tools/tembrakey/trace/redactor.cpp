#include "tembrakey/trace/redactor.h"

#include "tembrakey/trace/secrets.h"

namespace tembra::trace {

namespace {

constexpr std::size_t mostOpenThreads = 4096;
constexpr std::size_t batch = std::size_t{256} << 10;

} // namespace

void Redactor::remember(std::int64_t thread) {
    open_.insert(thread);
    openToTheEnd_ |= open_.size() >= mostOpenThreads;
    if (openToTheEnd_)
        open_.clear();
}

std::string_view Redactor::redact(const Piece &piece) {
    if (!piece.first)
        return redactRest(piece);
    rest_ = Rest::drop;
    masked_.clear();
    if (const auto line = parseLine(piece.text))
        return redactLine(*line, piece);
    return redactForeign(piece.text, piece.last);
}

std::string_view Redactor::redactLine(const Line &line, const Piece &piece) {
    open_.erase(line.thread);
    const auto head = static_cast<std::size_t>(line.message.data() - piece.text.data());
    if (redactPins(line, piece, head) || redactDump(line, piece, head))
        return masked_;
    // A line of arguments that ends before its PIN.
    if (writesPins(line.function) && (line.level == Level::information || !line.complete))
        remember(line.thread);
    if (piece.last || rest_ == Rest::passHex)
        return piece.text;
    masked_ = piece.text;
    return masked_ += maskText;
}

// head is where the message begins. False when the line shows no PIN.
bool Redactor::redactPins(const Line &line, const Piece &piece, std::size_t head) {
    const std::size_t pin = findPin(line.message);
    if (pin == nowhere) {
        // Another thread's line that was torn and ran into this one.
        nextIsSecret_ |= line.message.find("Pwd]") != nowhere;
        return false;
    }
    const std::size_t tail = line.complete && piece.last ? findPinTail(line.message, pin) : nowhere;
    masked_ = piece.text.substr(0, head + pin);
    if (tail == nowhere) {
        masked_ += maskText;
        remember(line.thread);
    } else {
        masked_ += maskPins(line.message.substr(pin, tail - pin), writesTwoPins(line.function));
        masked_ += piece.text.substr(head + tail);
    }
    return true;
}

// False when the line stays as it is.
bool Redactor::redactDump(const Line &line, const Piece &piece, std::size_t head) {
    const Dump dump = findDump(line.message);
    const bool reachesEnd = dump.end == line.message.size();
    if (dump.name != nowhere && reachesEnd && !piece.last)
        rest_ = Rest::passHex;
    if (mask_ == Mask::pins)
        return false;
    if (dump.name == nowhere) {
        const bool endsEarly = !line.complete || line.message.find("[length:") != nowhere;
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
    rest_ = Rest::drop;
    masked_ = piece.text.substr(0, head + dump.begin);
    masked_ += maskText;
    if (line.complete && piece.last)
        masked_ += ' ';
    return true;
}

std::string_view Redactor::redactForeign(std::string_view text, bool isLast) {
    const bool isRest = openToTheEnd_ || !open_.empty() || nextIsSecret_;
    nextIsSecret_ = false;
    if (const auto thread = tornHeadThread(text))
        remember(*thread);
    if (text.empty())
        return text;
    if (isRest || findPin(text) != nowhere || text.find("pretrynum") != nowhere)
        return masked_ = maskText;
    nextIsSecret_ = text.find("Pwd]") != nowhere;
    const std::size_t secret = findForeignSecret(text);
    const std::string_view visible = text.substr(0, secret);
    if (mask_ == Mask::pinsAndData)
        maskHex(visible, masked_);
    else
        masked_ = visible;
    if (secret != nowhere || !isLast)
        masked_ += maskText;
    return masked_;
}

std::string_view Redactor::redactRest(const Piece &piece) {
    if (rest_ == Rest::drop)
        return {};
    std::size_t end = piece.text.find_first_not_of("0123456789ABCDEFabcdef");
    if (end == nowhere || (piece.last && piece.text.substr(end) == " "))
        return piece.text;
    rest_ = Rest::drop;
    masked_ = piece.text.substr(0, end);
    masked_ += maskText;
    return masked_;
}

RedactingCopy::RedactingCopy(Write write)
    : write_(std::move(write)), redactor_(Mask::pinsAndData),
      reader_([this](const Piece &piece) { take(piece); }) {}

void RedactingCopy::take(const Piece &piece) {
    const std::string_view text = redactor_.redact(piece);
    isMasked_ |= text != piece.text;
    pending_ += text;
    pending_ += piece.ending;
    if (piece.last) {
        maskedLines_ += isMasked_ ? 1 : 0;
        isMasked_ = false;
    }
    if (pending_.size() >= batch) {
        write_(pending_);
        pending_.clear();
    }
}

void RedactingCopy::finish() {
    reader_.finish();
    write_(pending_);
    pending_.clear();
}

} // namespace tembra::trace
