#include "tembrakey/trace/json.h"

#include "tembrakey/trace/entry_points.h"

namespace tembra::trace {

namespace {

Json secondsOf(std::optional<std::chrono::seconds> seconds) {
    return seconds ? Json(seconds->count()) : Json();
}

Json argumentsOf(const Call &call) {
    Json arguments = Json::object();
    for (const CallLine &line : call.lines)
        if (line.isOpening)
            for (const auto &[name, value] : readArguments(call.name, line.message))
                arguments[std::string(name)] = value;
    return arguments;
}

Json toJson(const CallLine &line, Translate tr) {
    Json json = {{"line", line.number},
                 {"time", timeText(line.time)},
                 {"level", levelTag(line.level)},
                 {"function", line.function},
                 {"message", line.message}};
    if (line.isOrdinary)
        json["ordinary"] = true;
    const SarCode *code = line.level <= Level::warning ? findSarCode(line.message) : nullptr;
    if (code)
        json["code"] = {{"name", code->name}, {"meaning", tr(code->meaning, {})}};
    return json;
}

Json toJson(const Failure &failure, Translate tr) {
    constexpr const char *KINDS[] = {"failure", "refusedPin", "lostCall", "ordinary"};
    return {{"kind", KINDS[static_cast<int>(failure.kind)]},
            {"entryPoint", failure.entryPoint},
            {"text", failureText(failure, tr)},
            {"count", failure.count},
            {"first", timeText(failure.first)},
            {"last", timeText(failure.last)},
            {"firstLine", failure.firstLine},
            {"lastLine", failure.lastLine}};
}

} // namespace

Json toJson(const Call &call, Translate tr) {
    Json json = {{"kind", call.isLine ? "line" : "call"},
                 {"entryPoint", call.name},
                 {"thread", call.thread},
                 {"firstLine", call.firstLine},
                 {"lastLine", call.lastLine},
                 {"begin", timeText(call.begin)},
                 {"end", timeText(call.end)},
                 {"durationSeconds", secondsOf(call.duration())},
                 {"failed", call.failed()},
                 {"errors", call.errors},
                 {"warnings", call.warnings},
                 {"entryLine", call.entered},
                 {"exitLine", call.returned},
                 {"omitted", call.omitted},
                 {"arguments", argumentsOf(call)},
                 {"lines", Json::array()},
                 {"calls", Json::array()}};
    for (const CallLine &line : call.lines)
        json["lines"].push_back(toJson(line, tr));
    for (const Call &inner : call.calls)
        json["calls"].push_back(toJson(inner, tr));
    return json;
}

Json toJson(const Summary &summary, const Failures &failures, Translate tr) {
    Json json = {{"kind", "summary"},
                 {"lines", summary.lines},
                 {"foreignLines", summary.foreignLines},
                 {"calls", summary.calls},
                 {"failedCalls", summary.failedCalls},
                 {"lostCalls", summary.lostCalls},
                 {"warnedCalls", summary.warnedCalls},
                 {"threads", summary.threads.size()},
                 {"hasDurations", summary.hasDurations},
                 {"begin", summary.begin ? timeText(*summary.begin) : ""},
                 {"end", summary.end ? timeText(*summary.end) : ""},
                 {"failures", Json::array()},
                 {"otherFailures", failures.others()},
                 {"refusedPins", summary.refusedPins},
                 {"entryPoints", Json::array()}};
    for (const Failure &failure : failures.list())
        json["failures"].push_back(toJson(failure, tr));
    for (const auto &[name, count] : summary.entryPoints)
        json["entryPoints"].push_back({{"name", name},
                                       {"calls", count.calls},
                                       {"failed", count.failed},
                                       {"longestSeconds", secondsOf(count.longest)}});
    return json;
}

std::string jsonText(const Json &json) {
    std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    for (auto found = text.find('<'); found != text.npos; found = text.find('<', found))
        text.replace(found, 1, "\\u003c");
    return text;
}

} // namespace tembra::trace
