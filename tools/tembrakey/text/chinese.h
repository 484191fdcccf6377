// The tool's texts in simplified Chinese.
#pragma once

#include <span>

#include "tembrakey/text/text.h"

namespace tembra::tool {

std::span<const Translation> chineseTexts();

} // namespace tembra::tool
