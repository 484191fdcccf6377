#include "tembrakey/trace/trace_reader.h"

#include <algorithm>

namespace tembra::trace {

void TraceReader::Counting::take(Call &&call) {
    summary.count(call);
    sink.take(std::move(call));
}

void TraceReader::Counting::takeForeign(std::uint64_t number, std::string_view text) {
    ++summary.foreignLines;
    sink.takeForeign(number, text);
}

TraceReader::TraceReader(Mask mask, Sink &sink)
    : counting_(sink), redactor_(mask), builder_(counting_),
      reader_([this](const Piece &piece) { take(piece); }) {}

void TraceReader::take(const Piece &piece) {
    const std::string_view text = redactor_.redact(piece);
    if (piece.first && piece.last) {
        takeLine(text, piece.line, text.size());
        return;
    }
    if (piece.first) {
        beginning_ = text;
        fullLength_ = 0;
    }
    fullLength_ += text.size();
    if (piece.last)
        takeLine(beginning_, piece.line, fullLength_);
}

void TraceReader::takeLine(std::string_view text, std::uint64_t number, std::uint64_t length) {
    counting_.summary.lines = number;
    if (const auto line = parseLine(text)) {
        counting_.summary.count(*line);
        const std::uint64_t outside = text.size() - line->message.size();
        builder_.add(*line, number, length - std::min(length, outside));
    } else if (!text.empty()) {
        counting_.takeForeign(number, text.substr(0, LineReader::usualLimit));
    }
}

void TraceReader::finish() {
    reader_.finish();
    builder_.finish();
}

} // namespace tembra::trace
