// Where a trace line's text shows secrets.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tembrakey/trace/line.h"

namespace tembra::trace {

// What stands in a secret's place, whatever its length.
inline constexpr std::string_view MASK_TEXT = "***";

inline constexpr std::size_t NOWHERE = std::string_view::npos;

// Offset behind the first "pwd =" of the text (oldpwd, newpwd and sopwd too), its blank included.
std::size_t findPin(std::string_view text);

// Whether the routine writes PINs into its lines.
bool writesPins(std::string_view function);
bool writesTwoPins(std::string_view function);

// Offset of ", *pretrynum = N" or ", int *pretrynum = N" when the text ends with it. Only what lies
// behind `from` counts.
std::size_t findPinTail(std::string_view text, std::size_t from);

// The stretch of a line between its first "pwd = " and its tail, masked; of two PINs, each. A null
// pointer, which the log writes as (null), stays visible.
std::string maskPins(std::string_view stretch, bool two);

// A hex text in a message: "name[length:N]: 0123AB".
struct Dump {
    std::size_t name = NOWHERE; // where "[length:" stands; nowhere when there is no dump
    std::size_t begin = 0;      // of the hex digits
    std::size_t end = 0;
    bool whole = false; // as many digits as the length says
};
Dump findDump(std::string_view message);

// Whether the routine's dump of that name shows only what is public: a certificate or a public key.
bool isPublicDump(std::string_view function, std::string_view name);

// For text of unknown origin: offset behind "pin:", "password =" and the like.
std::size_t findForeignSecret(std::string_view text);

// For text of unknown origin: appends it to out with everything masked that could be a stretch of a
// dump, that is eight and more hex digits (a number behind 0x stays), and any behind "]: ".
void maskHex(std::string_view text, std::string &out);

} // namespace tembra::trace
