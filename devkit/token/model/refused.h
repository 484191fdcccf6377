// How the token says no: a thrown SAR_ code, which the exported function answers.
#pragma once

#include "platform/skf.h"

namespace tembra::token {

struct Refused {
    ULONG code;
};

inline void require(bool condition, ULONG codeIfNot) {
    if (!condition)
        throw Refused{codeIfNot};
}

// Codes of GM/T 0016 beyond those that the provider tells apart.
inline constexpr ULONG SAR_FILEERR = 0x0A000004;
inline constexpr ULONG SAR_NAMELENERR = 0x0A000009;
inline constexpr ULONG SAR_KEYUSAGEERR = 0x0A00000A;
inline constexpr ULONG SAR_MODULUSLENERR = 0x0A00000B;
inline constexpr ULONG SAR_NOTINITIALIZEERR = 0x0A00000C;
inline constexpr ULONG SAR_TIMEOUTERR = 0x0A00000F;
inline constexpr ULONG SAR_USER_TYPE_INVALID = 0x0A00002A;
inline constexpr ULONG SAR_APPLICATION_EXISTS = 0x0A00002C;

} // namespace tembra::token
