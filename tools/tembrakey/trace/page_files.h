// The page's own files, built in. Their texts come in pieces, since compilers limit literals.
#pragma once

#include <span>
#include <string_view>

namespace tembra::trace {

std::span<const std::string_view> pageHtml();
std::span<const std::string_view> pageCss();
std::span<const std::string_view> pageScript();

} // namespace tembra::trace
