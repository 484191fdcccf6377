// A token as the text of its file.
#pragma once

#include <string>
#include <string_view>

#include "token/model/image.h"

namespace tembra::token::store {

std::string encodeImage(const model::Image &image);

// Error(SAR_FAIL) if the text is not a token of the current format.
model::Image decodeImage(std::string_view text);

// Whether the text is a token of a format that this library no longer reads.
bool isOldFormat(std::string_view text);

} // namespace tembra::token::store
