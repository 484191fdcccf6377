#include "tembrakey/trace/call_json.h"

#include "tembrakey/trace/entry_points.h"

namespace tembra::trace {

namespace {

void writeSeconds(JsonText &json, std::string_view name, std::optional<std::int64_t> seconds) {
    json.name(name);
    if (seconds)
        json.value(*seconds);
    else
        json.null();
}

void writeArguments(JsonText &json, const Call &call) {
    json.name("arguments").beginObject();
    if (call.opening)
        for (const auto &[name, value] :
             readArguments(call.name, call.lines[*call.opening].message))
            json.member(name, value);
    json.endObject();
}

void writeLine(JsonText &json, const CallLine &line, bool isOpening) {
    json.beginObject()
        .member("line", line.number)
        .member("time", timeText(line.second))
        .member("level", levelTag(line.level))
        .member("function", line.function)
        .member("message", line.message);
    if (isOpening)
        json.member("isArguments", true);
    json.endObject();
}

void writeMembers(JsonText &json, const Call &call) {
    json.member("entryPoint", call.name)
        .member("thread", call.thread)
        .member("firstLine", call.firstLine)
        .member("lastLine", call.lastLine)
        .member("begin", timeText(call.begin))
        .member("end", timeText(call.end));
    writeSeconds(json, "durationSeconds", call.duration());
    json.member("failed", call.failed())
        .member("errors", call.errors)
        .member("warnings", call.warnings)
        .member("entryLine", call.entered)
        .member("exitLine", call.returned)
        .member("omitted", call.omitted);
    writeArguments(json, call);
    json.name("lines").beginArray();
    for (std::size_t i = 0; i < call.lines.size(); ++i)
        writeLine(json, call.lines[i], call.opening == i);
    json.endArray().name("calls").beginArray();
    for (const Call &inner : call.calls) {
        json.beginObject();
        writeMembers(json, inner);
        json.endObject();
    }
    json.endArray();
}

} // namespace

void writeCall(JsonText &json, const Call &call) {
    json.beginObject().member("kind", "call");
    writeMembers(json, call);
    json.endObject();
}

void writeForeign(JsonText &json, std::uint64_t number, std::string_view text) {
    json.beginObject()
        .member("kind", "foreign")
        .member("line", number)
        .member("text", text)
        .endObject();
}

void writeSummary(JsonText &json, const Summary &summary) {
    json.beginObject()
        .member("kind", "summary")
        .member("lines", summary.lines)
        .member("foreignLines", summary.foreignLines)
        .member("calls", summary.calls)
        .member("failedCalls", summary.failedCalls)
        .member("lostCalls", summary.lostCalls)
        .member("warnedCalls", summary.warnedCalls)
        .member("threads", static_cast<std::uint64_t>(summary.threads.size()))
        .member("hasDurations", summary.hasDurations);
    json.member("begin", summary.begin ? timeText(*summary.begin) : std::string())
        .member("end", summary.end ? timeText(*summary.end) : std::string());
    json.name("entryPoints").beginArray();
    for (const auto &[name, count] : summary.entryPoints) {
        json.beginObject()
            .member("name", name)
            .member("calls", count.calls)
            .member("failed", count.failed);
        writeSeconds(json, "longestSeconds", count.longest);
        json.endObject();
    }
    json.endArray().endObject();
}

} // namespace tembra::trace
