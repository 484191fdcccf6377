// Calls, failures and sums as JSON, for programs and for the page.
#pragma once

#include <nlohmann/json.hpp>

#include "tembrakey/trace/failures.h"
#include "tembrakey/trace/trace_reader.h"

namespace tembra::trace {

using Json = nlohmann::ordered_json;

// {"kind": "call" or "line", "entryPoint": ..., "calls": [...]}
Json toJson(const Call &call, Translate tr);
Json toJson(const Summary &summary, const Failures &failures, Translate tr);

// On one line. Bytes that are not UTF-8 become replacement characters; "<" is escaped, so that the
// text can be embedded in a page.
std::string jsonText(const Json &json);

} // namespace tembra::trace
