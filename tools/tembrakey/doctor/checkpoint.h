// What the doctor is about to call, in case the call does not return.
#pragma once

#include <functional>
#include <string>

namespace tembra::tool::doctor {

// Called before a function of a library is; the function is "loading" for the library itself.
using Checkpoint = std::function<void(const std::string &library, const std::string &function)>;

} // namespace tembra::tool::doctor
