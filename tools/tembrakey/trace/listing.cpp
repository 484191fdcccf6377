#include "tembrakey/trace/listing.h"

#include <cstdio>

#include "tembrakey/trace/utf8.h"

namespace tembra::trace {

namespace {

std::string number(std::int64_t value) {
    return std::to_string(value);
}

// Both texts in columns, then the rest.
std::string columns(const std::string &time, const std::string &thread, const std::string &rest) {
    char text[64];
    std::snprintf(text, sizeof text, "%s  %6s  ", time.c_str(), thread.c_str());
    return text + rest;
}

// With a space behind it at least.
std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

const CallLine *firstError(const Call &call) {
    for (const CallLine &line : call.lines)
        if (line.level == Level::error)
            return &line;
    return nullptr;
}

} // namespace

std::string summaryText(const Summary &summary, Translate translate) {
    if (summary.calls == 0 && summary.foreignLines == summary.lines)
        return fill(translate("No line of this file is a trace line ({1} lines)"),
                    {grouped(summary.lines)});
    std::string text =
        fill(translate("{1} lines, {2} calls on {3} threads, {4} to {5}"),
             {grouped(summary.lines), grouped(summary.calls),
              grouped(summary.threads.size()) + (summary.moreThreads ? "+" : ""),
              timeText(summary.begin.value_or(0)), timeText(summary.end.value_or(0))});
    if (summary.foreignLines > 0)
        text += "\n" + fill(translate("Lines that are no trace lines, shown as they are: {1}"),
                            {grouped(summary.foreignLines)});
    if (summary.lostCalls > 0)
        text += "\n" + fill(translate("{1} calls were entered, but the log does not show that they "
                                      "returned"),
                            {grouped(summary.lostCalls)});
    text += "\n";
    text += summary.hasDurations
                ? translate("The log's clock shows whole seconds: durations are right to within "
                            "one second")
                : translate("No durations: the log has no entry and exit lines (level 4 writes "
                            "them); calls are told apart by the lines of their arguments");
    return text;
}

std::string Listing::name(const Call &call) const {
    return call.name.empty() ? m_translate("(inside a call that began before the log)")
                             : printable(call.name);
}

std::string Listing::duration(const Call &call) const {
    if (const auto seconds = call.duration())
        return *seconds == 0 ? m_translate("under 1 s")
                             : fill(m_translate("about {1} s"), {number(*seconds)});
    if (call.lost())
        return m_translate("did not return");
    return call.returned && !call.entered ? m_translate("began before the log") : "";
}

std::string Listing::failures(const Call &call) const {
    std::string text;
    if (call.failed()) {
        const CallLine *error = firstError(call);
        const std::string rest =
            padded(name(call), 28) + (error ? printable(error->message) : std::string("..."));
        text += columns(timeText(error ? error->second : call.begin), number(call.thread), rest) +
                "  " +
                fill(m_translate("(line {1})"),
                     {std::to_string(error ? error->number : call.firstLine)}) +
                "\n";
    }
    for (const Call &inner : call.calls)
        text += failures(inner);
    return text;
}

void Listing::appendHead(std::string &text, const Call &call, std::size_t depth) const {
    std::string rest =
        std::string(2 * depth, ' ') + padded(name(call), 30 - 2 * std::min<std::size_t>(depth, 8));
    rest += padded(duration(call), 14) +
            fill(m_translate("line {1}"), {std::to_string(call.firstLine)});
    text += (call.failed() ? "! " : "  ") +
            columns(timeText(call.begin).substr(11), number(call.thread), rest) + "\n";
}

void Listing::appendLine(std::string &text, const Call &call, std::size_t index,
                         std::size_t depth) const {
    const CallLine &line = call.lines[index];
    text += std::string(22 + 2 * depth, ' ');
    if (call.opening != index) {
        text += "[" + std::string(levelTag(line.level)) + "] ";
        if (line.function != call.name)
            text += printable(line.function) + ": ";
    }
    text += printable(line.message) + "\n";
}

void Listing::append(std::string &text, const Call &call, std::size_t depth) const {
    appendHead(text, call, depth);
    auto inner = call.calls.begin();
    for (std::size_t i = 0; i < call.lines.size(); ++i) {
        for (; inner != call.calls.end() && inner->firstLine < call.lines[i].number; ++inner)
            append(text, *inner, depth + 1);
        appendLine(text, call, i, depth);
    }
    for (; inner != call.calls.end(); ++inner)
        append(text, *inner, depth + 1);
    if (call.omitted > 0)
        text += std::string(22 + 2 * depth, ' ') +
                fill(m_translate("({1} more lines and calls that are not shown)"),
                     {grouped(call.omitted)}) +
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
    return "  " + fill(m_translate("line {1}"), {std::to_string(lineNumber)}) + " | " +
           printable(text) + "\n";
}

} // namespace tembra::trace
