// The tool's texts in simplified Chinese.
#pragma once

#include <span>

#include "tembrakey/text/text.h"

namespace tembra::tool {

std::span<const Translation> chineseHelp();     // summaries, arguments, explanations
std::span<const Translation> chineseMessages(); // results, questions, errors
std::span<const Translation> chineseTrace();    // the command trace and its page
std::span<const Translation> chineseDoctor();   // the command doctor

} // namespace tembra::tool
