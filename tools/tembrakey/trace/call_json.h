// Calls and sums as JSON. The same objects stand in JSON output and in the page.
#pragma once

#include <string_view>

#include "tembrakey/trace/call.h"
#include "tembrakey/trace/json_text.h"
#include "tembrakey/trace/summary.h"

namespace tembra::trace {

// {"kind": "call", "entryPoint": ..., "calls": [...]}; inner calls have no "kind".
void writeCall(JsonText &json, const Call &call);
void writeForeign(JsonText &json, std::uint64_t number, std::string_view text);
void writeSummary(JsonText &json, const Summary &summary);

} // namespace tembra::trace
