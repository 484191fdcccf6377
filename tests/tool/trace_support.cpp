#include "trace_support.h"

#include "tembrakey/trace/listing.h"

namespace tembra::trace::test {

namespace {

class ListingSink final : public Sink {
public:
    explicit ListingSink(const Filter &filter) : filter_(filter) {}

    void take(Call &&call) override {
        filter_.pass(std::move(call), [this](Call &&passed) { text += listing_.whole(passed); });
    }
    void takeForeign(std::uint64_t number, std::string_view foreign) override {
        text += listing_.foreign(number, foreign);
    }

    std::string text;

private:
    const Filter &filter_;
    Listing listing_{untranslated};
};

template <typename Reader>
void feedInBlocks(Reader &reader, std::string_view log, std::size_t block) {
    for (; !log.empty(); log.remove_prefix(std::min(block, log.size())))
        reader.feed(log.substr(0, block));
    reader.finish();
}

} // namespace

std::string line(int thread, int second, std::string_view level, std::string_view function,
                 std::string_view message) {
    std::string text = std::to_string(thread) + " 2026-11-21 12:30:";
    text += static_cast<char>('0' + second / 10);
    text += static_cast<char>('0' + second % 10);
    text.append(" [").append(level).append("] [").append(function).append("] ");
    return text.append(message).append(" \n");
}

std::string enter(int thread, int second, std::string_view name) {
    return line(thread, second, "DEBUG", "call_stack_tracer::call_stack_tracer",
                ">>>>> " + std::string(name));
}

std::string leave(int thread, int second, std::string_view name) {
    return line(thread, second, "DEBUG", "call_stack_tracer::~call_stack_tracer",
                "<<<<< " + std::string(name));
}

std::string listed(std::string_view log, const Filter &filter, std::size_t block) {
    ListingSink sink(filter);
    TraceReader reader(Mask::pins, sink);
    feedInBlocks(reader, log, block);
    constexpr std::string_view day = "  2026-11-21\n";
    if (const auto at = sink.text.find(day); at != sink.text.npos)
        sink.text.erase(at, day.size());
    return sink.text;
}

std::string redacted(std::string_view log, std::size_t block) {
    std::string text;
    RedactingCopy copy([&](std::string_view stretch) { text += stretch; });
    feedInBlocks(copy, log, block);
    return text;
}

} // namespace tembra::trace::test
