// JSON objects whose members keep their order.
#pragma once

#include <nlohmann/json.hpp>

namespace tembra::tool {

using Json = nlohmann::ordered_json;

} // namespace tembra::tool
