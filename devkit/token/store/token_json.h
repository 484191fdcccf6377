// A token as the text of its file.
#pragma once

#include "token/model/image.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tembra::token::store {

// The text begins with the token's id and generation: two files that agree in these first bytes are
// the same file, so a change is noticed by reading no more than them.
constexpr std::size_t HEAD_SIZE = 160;

std::string encodeImage(const model::Image &image);

// Throws std::exception when the text isn't a token's.
model::Image decodeImage(std::string_view text);

} // namespace tembra::token::store
