// The names of the functions of both libraries that a fault plan may contain.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace tembra::fault_injection {

inline constexpr std::string_view FUNCTION_NAMES[] = {
#define TEMBRA_IMPORT(result, name, parameters) #name,
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
};

// The index of a name, or the number of names if it is unknown.
constexpr std::size_t functionIndex(std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(FUNCTION_NAMES, name) - FUNCTION_NAMES);
}

} // namespace tembra::fault_injection
