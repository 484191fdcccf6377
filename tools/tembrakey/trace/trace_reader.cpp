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
    : m_counting(sink), m_redactor(mask), m_builder(m_counting),
      m_reader([this](const Piece &piece) { take(piece); }) {}

void TraceReader::take(const Piece &piece) {
    const std::string_view text = m_redactor.redact(piece);
    if (piece.first && piece.last) {
        takeLine(text, piece.line, text.size());
        return;
    }
    if (piece.first) {
        m_beginning = text;
        m_fullLength = 0;
    }
    m_fullLength += text.size();
    if (piece.last)
        takeLine(m_beginning, piece.line, m_fullLength);
}

void TraceReader::takeLine(std::string_view text, std::uint64_t number, std::uint64_t length) {
    m_counting.summary.lines = number;
    if (const auto line = parseLine(text)) {
        m_counting.summary.count(*line);
        const std::uint64_t outside = text.size() - line->message.size();
        m_builder.add(*line, number, length - std::min(length, outside));
    } else if (!text.empty()) {
        m_counting.takeForeign(number, text.substr(0, LineReader::USUAL_LIMIT));
    }
}

void TraceReader::finish() {
    m_reader.finish();
    m_builder.finish();
}

} // namespace tembra::trace
