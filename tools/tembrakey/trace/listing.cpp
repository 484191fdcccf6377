#include "tembrakey/trace/listing.h"

#include <algorithm>

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_FAILURES = 200; // in the table

// With at least one blank behind it.
std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

std::string aligned(const std::string &text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string clockOf(Time time) {
    return timeText(time).substr(11);
}

std::string table(const std::vector<Failure> &failures, const std::string &title, Translate tr) {
    if (failures.empty())
        return "";
    std::string text = "\n" + title + "\n";
    for (const Failure &failure : failures) {
        const bool isOneDay =
            timeText(failure.first).substr(0, 10) == timeText(failure.last).substr(0, 10);
        const std::string until = isOneDay ? clockOf(failure.last) : timeText(failure.last);
        const std::string time = timeText(failure.first) + (failure.count > 1 ? " - " + until : "");
        text += aligned(grouped(failure.count), 7) + "x  " + padded(time, 31) +
                padded(printable(failure.entryPoint), 22) + failureText(failure, tr) + "  " +
                tr("(line {1})", {std::to_string(failure.firstLine)}) + "\n";
    }
    return text;
}

} // namespace

std::string summaryText(const Summary &summary, Translate tr) {
    if (!summary.begin)
        return tr("this file has no trace lines ({1} lines)", {grouped(summary.lines)});
    std::string text = tr("{1} lines, {2} calls on {3} threads, {4} to {5}",
                          {grouped(summary.lines), grouped(summary.calls),
                           grouped(summary.threads.size()) + (summary.hasMoreThreads ? "+" : ""),
                           timeText(*summary.begin), timeText(*summary.end)});
    if (summary.foreignLines > 0)
        text += "\n" + tr("Lines that are not trace lines, shown as they are: {1}",
                          {grouped(summary.foreignLines)});
    text += "\n";
    if (summary.hasDurations)
        return text + tr("The clock of the log shows whole seconds: durations are right to within "
                         "one second",
                         {});
    if (summary.calls > 0)
        return text + tr("No durations, which need the entry and exit lines of level 4: a call "
                         "lasts to the next line of an entry point on its thread",
                         {});
    return text + tr("Errors and warnings only: lines are listed without their calls, which need "
                     "level 3",
                     {});
}

// A table that is cut loses the most frequent failures, so that the rare ones stay.
std::string failuresText(const Failures &failures, Translate tr) {
    std::vector<Failure> bad;
    std::vector<Failure> ordinary;
    for (Failure &failure : failures.list())
        (failure.kind == Kind::ordinary ? ordinary : bad).push_back(std::move(failure));
    std::uint64_t others = failures.others();
    while (bad.size() > MOST_FAILURES) {
        const auto most =
            std::max_element(bad.begin(), bad.end(),
                             [](const Failure &a, const Failure &b) { return a.count < b.count; });
        others += most->count;
        bad.erase(most);
    }
    std::string text = table(bad, tr("Failures", {}), tr);
    if (others > 0)
        text += tr("... and {1} more", {grouped(others)}) + "\n";
    return text + table(ordinary,
                        tr("Notes: ordinary although logged as errors (no such setting, "
                           "certificate or key pair)",
                           {}),
                        tr);
}

std::string Listing::state(const Call &call) const {
    if (call.refused)
        return m_tr("PIN probably refused", {});
    if (const auto seconds = call.duration())
        return seconds->count() == 0 ? m_tr("under 1 s", {})
                                     : m_tr("about {1} s", {std::to_string(seconds->count())});
    if (call.lost())
        return m_tr("did not return", {});
    return call.returned && !call.entered ? m_tr("began before the log", {}) : "";
}

std::string Listing::lineText(const Call &call, const CallLine &line) const {
    const bool isSerious = line.level <= Level::warning;
    return "[" + std::string(line.isOrdinary ? "NOTE" : levelTag(line.level)) + "] " +
           (line.function != call.name || call.isLine ? printable(line.function) + ": " : "") +
           (isSerious ? explained(line.message, m_tr) : printable(line.message));
}

void Listing::append(std::string &text, const Call &call, std::size_t depth) const {
    const std::string number = m_tr("line {1}", {std::to_string(call.firstLine)});
    const std::string rest =
        call.isLine ? padded(lineText(call, call.lines.front()), 44) + number
                    : std::string(2 * depth, ' ') +
                          padded(printable(call.name), 30 - 2 * std::min<std::size_t>(depth, 8)) +
                          padded(state(call), 14) + number;
    text += (call.failed()  ? "! "
             : call.refused ? "? "
                            : "  ") +
            clockOf(call.begin) + aligned(std::to_string(call.thread), 8) + "  " + rest + "\n";
    if (call.isLine)
        return;
    const std::string indent(22 + 2 * depth, ' ');
    auto inner = call.calls.begin();
    for (const CallLine &line : call.lines) {
        for (; inner != call.calls.end() && inner->firstLine < line.number; ++inner)
            append(text, *inner, depth + 1);
        text += indent + (line.isOpening ? printable(line.message) : lineText(call, line)) + "\n";
    }
    for (; inner != call.calls.end(); ++inner)
        append(text, *inner, depth + 1);
    if (call.omitted > 0)
        text += indent +
                m_tr("({1} more lines and calls that are not shown)", {grouped(call.omitted)}) +
                "\n";
}

std::string Listing::whole(const Call &call) {
    std::string text;
    std::string day = timeText(call.begin).substr(0, 10);
    if (day != m_day) {
        text = "  " + day + "\n";
        m_day = std::move(day);
    }
    append(text, call, 0);
    return text;
}

std::string Listing::foreign(std::uint64_t lineNumber, std::string_view text) const {
    return "  " + m_tr("line {1}", {std::to_string(lineNumber)}) + " | " + printable(text) + "\n";
}

} // namespace tembra::trace
