// Texts and bytes as JSON strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tembra::door {

// Quoted and escaped. A byte that belongs to no UTF-8 character, as of a name in another encoding,
// becomes U+FFFD, so the line stays valid JSON whatever a host passes.
std::string jsonText(std::string_view text);

// Quoted hexadecimal digits of the first bytes, at most limit of them.
std::string jsonHex(std::span<const std::uint8_t> bytes, std::size_t limit);

} // namespace tembra::door
