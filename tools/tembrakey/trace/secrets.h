// Finds secrets in the text of a trace log.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tembrakey/trace/line.h"

namespace tembra::trace {

// Replaces a secret of any length.
inline constexpr std::string_view MASK_TEXT = "***";

enum class Mask {
    pins,
    pinsAndData // also hex dumps other than certificates and public keys
};

// A stretch of a line's message.
struct Secret {
    std::size_t begin = std::string_view::npos; // npos: none
    std::size_t end = std::string_view::npos;
    bool isOpen = false; // may continue behind the line
};

Secret findSecret(const Line &line, Mask mask);

// The secret with masks for its PINs or its data.
std::string maskedSecret(const Line &line, const Secret &secret);

// For text of unknown origin: whether it has a piece of a PIN line.
bool looksLikePinLine(std::string_view text);

// For text of unknown origin: masks what follows "pin:", "password =" and the like and, with
// pinsAndData, what could be a stretch of a dump.
std::string maskForeign(std::string_view text, Mask mask);

} // namespace tembra::trace
