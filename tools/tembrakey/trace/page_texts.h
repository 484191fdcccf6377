// What the page says to people; its code looks the translations up by the English text.
#pragma once

#include <span>

namespace tembra::trace {

std::span<const char *const> pageTexts();

} // namespace tembra::trace
