#include "tembrakey/trace/call_builder.h"

#include <algorithm>

#include "tembrakey/trace/entry_points.h"

namespace tembra::trace {

namespace {

// What one call with its inner calls, and all open calls together, may hold on to.
constexpr std::size_t MOST_BYTES = std::size_t{256} << 10;
constexpr std::size_t MOST_BYTES_WITH_ERRORS = 2 * MOST_BYTES; // error lines have room of their own
constexpr std::size_t MOST_THREADS = 256;
constexpr std::size_t MOST_DEPTH = 64;
constexpr std::size_t LONGEST_MESSAGE = 2000;
constexpr std::size_t BYTES_OF_A_LINE = sizeof(CallLine) + 32;

constexpr std::string_view ENTRY_TRACER = "call_stack_tracer::call_stack_tracer";
constexpr std::string_view EXIT_TRACER = "call_stack_tracer::~call_stack_tracer";
constexpr std::string_view ENTRY_MARK = ">>>>> ";
constexpr std::string_view EXIT_MARK = "<<<<< ";

std::string shortened(std::string_view message, std::uint64_t fullLength) {
    if (fullLength <= LONGEST_MESSAGE && message.size() <= LONGEST_MESSAGE)
        return std::string(message);
    std::size_t length = std::min(message.size(), LONGEST_MESSAGE);
    while (length > 0 && length < message.size() && (message[length] & 0xC0) == 0x80)
        --length; // not inside a UTF-8 character
    return std::string(message.substr(0, length)) + "... (" + std::to_string(fullLength) + ")";
}

Call begun(std::string_view name, const Line &line, std::uint64_t number) {
    Call call;
    call.name = name.substr(0, 256);
    call.thread = line.thread;
    call.firstLine = call.lastLine = number;
    call.begin = call.end = line.second;
    return call;
}

// An import envelopes a plain key pair and calls itself for the rest; no other entry point runs
// inside itself, and none inside others at a process's start and end. So an entry line that seems
// to is the first one after a call whose exit line never came.
bool provesLoss(const std::vector<Call> &open, std::string_view name) {
    const auto before = std::count_if(open.begin(), open.end(),
                                      [&](const Call &call) { return call.name == name; });
    return name == "DeviceInit" || name == "DeviceEnd" ||
           before > (name == "DeviceImportKeypair" ? 1 : 0);
}

// Whether the one gives its reference back through the other.
bool releasesThrough(std::string_view outer, std::string_view inner) {
    return inner == "DeviceFreeDevice" && outer != inner && outer.starts_with("DeviceFree") &&
           outer != "DeviceFreePublicKey";
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

void CallBuilder::add(const Line &line, std::uint64_t number, std::uint64_t fullLength) {
    Thread &thread = threadOf(line, number);
    if (line.function == ENTRY_TRACER && line.message.starts_with(ENTRY_MARK)) {
        enter(thread, line, number);
    } else if (line.function == EXIT_TRACER && line.message.starts_with(EXIT_MARK)) {
        leave(thread, line, number);
    } else {
        if (thread.open.empty() || !thread.open.front().entered)
            infer(thread, line, number);
        keep(thread, line, number, fullLength);
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
    auto found = std::find_if(thread.open.rbegin(), thread.open.rend(),
                              [&](const Call &call) { return call.name == name; });
    if (found == thread.open.rend()) {
        // The log begins inside this call.
        closeAll(thread);
        thread.open.push_back(begun(name, line, number));
        found = thread.open.rbegin();
    }
    const auto depth = static_cast<std::size_t>(thread.open.rend() - found);
    while (thread.open.size() > depth)
        close(thread);
    Call &call = thread.open.back();
    call.returned = true;
    call.lastLine = number;
    call.end = line.second;
    close(thread);
}

// Without entry lines: opens a call when the line proves that one has begun.
void CallBuilder::infer(Thread &thread, const Line &line, std::uint64_t number) {
    const std::string_view name = callOf(line.function);
    const bool opens =
        line.function == name && line.level == Level::information && opensCall(line.message);
    const auto isPartOf = [&](const Call &call) {
        return name.empty() || (call.name == name && !(opens && call.opening));
    };
    if (thread.open.size() > 1 && !name.empty() && isPartOf(thread.open.front()))
        close(thread); // back from the inner call
    if (thread.open.empty() || !isPartOf(thread.open.back())) {
        if (thread.open.size() != 1 || !releasesThrough(thread.open.front().name, name))
            closeAll(thread);
        thread.open.push_back(begun(name, line, number));
    }
    Call &call = thread.open.back();
    if (opens && !call.opening)
        call.opening = call.lines.size();
}

void CallBuilder::keep(Thread &thread, const Line &line, std::uint64_t number,
                       std::uint64_t fullLength) {
    Call &call = thread.open.back();
    call.errors += line.level == Level::error ? 1 : 0;
    call.warnings += line.level == Level::warning ? 1 : 0;
    call.lastLine = number;
    call.end = line.second;
    const std::size_t most = line.level == Level::error ? MOST_BYTES_WITH_ERRORS : MOST_BYTES;
    if (thread.kept >= most) {
        ++call.omitted;
        return;
    }
    if (call.entered && !call.opening && line.function == call.name &&
        line.level == Level::information && opensCall(line.message))
        call.opening = call.lines.size();
    call.lines.push_back({number, line.second, line.level,
                          std::string(line.function.substr(0, 256)),
                          shortened(line.message, fullLength)});
    thread.kept += BYTES_OF_A_LINE + call.lines.back().message.size();
}

void CallBuilder::close(Thread &thread) {
    Call call = std::move(thread.open.back());
    thread.open.pop_back();
    if (thread.open.empty()) {
        thread.kept = 0;
        m_sink.take(std::move(call));
        return;
    }
    Call &outer = thread.open.back();
    outer.lastLine = call.lastLine;
    outer.end = call.end;
    const bool fits = thread.kept < (call.failed() ? MOST_BYTES_WITH_ERRORS : MOST_BYTES);
    if (!fits) {
        outer.omitted += 1 + call.omitted;
        outer.errors += call.errors;
        return;
    }
    thread.kept += sizeof(Call) + 64;
    outer.calls.push_back(std::move(call));
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
