#include "tembrakey/trace/call_builder.h"

#include <algorithm>

#include "tembrakey/trace/entry_points.h"
#include "tembrakey/trace/failures.h"

namespace tembra::trace {

namespace {

// Limits for one call with its inner calls and for all open calls together.
constexpr std::size_t MOST_BYTES = std::size_t{256} << 10;
constexpr std::size_t MOST_BYTES_IN_ALL = std::size_t{64} << 20;
constexpr std::size_t MOST_THREADS = 4096;
constexpr std::size_t MOST_DEPTH = 64;
constexpr std::size_t LONGEST_MESSAGE = 2000;

constexpr std::string_view ENTRY_TRACER = "call_stack_tracer::call_stack_tracer";
constexpr std::string_view EXIT_TRACER = "call_stack_tracer::~call_stack_tracer";
constexpr std::string_view ENTRY_MARK = ">>>>> ";
constexpr std::string_view EXIT_MARK = "<<<<< ";

std::string shortened(std::string_view message) {
    if (message.size() <= LONGEST_MESSAGE)
        return std::string(message);
    std::size_t length = LONGEST_MESSAGE;
    while (length > 0 && (message[length] & 0xC0) == 0x80)
        --length; // not inside a UTF-8 character
    return std::string(message.substr(0, length)) + "... (" + std::to_string(message.size()) + ")";
}

Call begun(std::string_view name, const Line &line, std::uint64_t number) {
    Call call;
    call.name = name.substr(0, 256);
    call.thread = line.thread;
    call.firstLine = call.lastLine = number;
    call.begin = call.end = line.time;
    return call;
}

// No entry point runs inside itself except DeviceImportKeypair, once, and none around DeviceInit.
// An entry line that seems to prove otherwise is the first one after a crash.
bool provesLoss(const std::vector<Call> &open, std::string_view name) {
    const auto same = std::count_if(open.begin(), open.end(),
                                    [&](const Call &call) { return call.name == name; });
    return name == "DeviceInit" || same > (name == "DeviceImportKeypair" ? 1 : 0);
}

// Whether both messages begin with the same argument.
bool beginAlike(std::string_view one, std::string_view other) {
    const auto first = [](std::string_view text) {
        return text.substr(0, text.find_first_of("=:"));
    };
    return first(one) == first(other);
}

} // namespace

CallBuilder::Thread &CallBuilder::threadOf(const Line &line, std::uint64_t number) {
    if (m_threads.size() >= MOST_THREADS && !m_threads.contains(line.thread)) {
        const auto quietest =
            std::min_element(m_threads.begin(), m_threads.end(), [](const auto &a, const auto &b) {
                return a.second.lastLine < b.second.lastLine;
            });
        closeAll(quietest->second);
        m_threads.erase(quietest);
    }
    Thread &thread = m_threads[line.thread];
    thread.lastLine = number;
    return thread;
}

void CallBuilder::add(const Line &line, std::uint64_t number) {
    Thread &thread = threadOf(line, number);
    if (line.function == ENTRY_TRACER && line.message.starts_with(ENTRY_MARK)) {
        enter(thread, line, number);
    } else if (line.function == EXIT_TRACER && line.message.starts_with(EXIT_MARK)) {
        leave(thread, line, number);
    } else {
        if (thread.open.empty() || !thread.open.front().entered)
            infer(thread, line, number);
        keep(thread, line, number);
        if (thread.open.back().isLine)
            close(thread);
    }
}

void CallBuilder::enter(Thread &thread, const Line &line, std::uint64_t number) {
    const std::string_view name = line.message.substr(ENTRY_MARK.size());
    if (!thread.open.empty() && (!thread.open.front().entered || provesLoss(thread.open, name)))
        closeAll(thread);
    if (thread.open.size() >= MOST_DEPTH) {
        ++thread.open.back().omitted;
        return;
    }
    thread.open.push_back(begun(name, line, number));
    thread.open.back().entered = true;
}

void CallBuilder::leave(Thread &thread, const Line &line, std::uint64_t number) {
    const std::string_view name = line.message.substr(EXIT_MARK.size());
    const auto isIt = [&](const Call &call) { return call.name == name; };
    if (std::none_of(thread.open.begin(), thread.open.end(), isIt)) {
        closeAll(thread); // the log begins inside this call
        thread.open.push_back(begun(name, line, number));
    }
    while (!isIt(thread.open.back()))
        close(thread);
    Call &call = thread.open.back();
    call.returned = true;
    call.lastLine = number;
    call.end = line.time;
    close(thread);
}

// Without entry lines: opens a call, or a lone line, unless the line belongs to the open call.
void CallBuilder::infer(Thread &thread, const Line &line, std::uint64_t number) {
    const bool isOwn = isEntryPoint(line.function);
    const bool opens = isOwn && line.level >= Level::information;
    if (!thread.open.empty()) {
        const Call &call = thread.open.back();
        const bool isNext = opens && beginAlike(call.lines.front().message, line.message);
        if (isOwn ? call.name == line.function && !isNext : true)
            return;
        closeAll(thread);
    }
    thread.open.push_back(begun(line.function, line, number));
    thread.open.back().isLine = !opens;
}

bool CallBuilder::hasRoom(Thread &thread, std::size_t bytes, bool failed) {
    const std::size_t share = failed ? 2 : 1; // failures have room of their own
    if (thread.kept >= share * MOST_BYTES || m_kept >= share * MOST_BYTES_IN_ALL)
        return false;
    thread.kept += bytes;
    m_kept += bytes;
    return true;
}

void CallBuilder::keep(Thread &thread, const Line &line, std::uint64_t number) {
    Call &call = thread.open.back();
    CallLine kept = {number, line.time, line.level, std::string(line.function),
                     shortened(line.message)};
    kept.isOrdinary = isOrdinary(line, call.entered ? call.name : std::string_view());
    call.errors += kept.failed() ? 1 : 0;
    call.warnings += line.level == Level::warning ? 1 : 0;
    call.refused |= m_refused.contains(number);
    call.lastLine = number;
    call.end = line.time;
    if (!call.lines.empty() && !hasRoom(thread, sizeof kept + kept.message.size(), kept.failed())) {
        ++call.omitted;
        return;
    }
    const auto isOpening = [](const CallLine &one) { return one.isOpening; };
    kept.isOpening = line.function == call.name && line.level == Level::information &&
                     std::none_of(call.lines.begin(), call.lines.end(), isOpening);
    call.lines.push_back(std::move(kept));
}

void CallBuilder::close(Thread &thread) {
    Call call = std::move(thread.open.back());
    thread.open.pop_back();
    if (thread.open.empty()) {
        m_kept -= thread.kept;
        thread.kept = 0;
        m_take(std::move(call));
        return;
    }
    Call &outer = thread.open.back();
    outer.lastLine = call.lastLine;
    outer.end = call.end;
    if (hasRoom(thread, sizeof call, call.failed())) {
        outer.calls.push_back(std::move(call));
    } else {
        outer.omitted += 1 + call.omitted;
        outer.errors += call.errors;
    }
}

void CallBuilder::closeAll(Thread &thread) {
    while (!thread.open.empty())
        close(thread);
}

void CallBuilder::finish() {
    std::vector<Thread *> left;
    for (auto &[id, thread] : m_threads)
        left.push_back(&thread);
    std::sort(left.begin(), left.end(),
              [](const Thread *a, const Thread *b) { return a->lastLine < b->lastLine; });
    for (Thread *thread : left)
        closeAll(*thread);
    m_threads.clear();
}

} // namespace tembra::trace
