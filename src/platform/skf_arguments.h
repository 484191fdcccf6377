// SKF functions take pointers to non-const data even for input.
#pragma once

#include "platform/skf.h"

namespace tembra {

inline BYTE *skfInput(const unsigned char *data) {
    return const_cast<BYTE *>(data);
}

inline LPSTR skfInput(const char *text) {
    return const_cast<LPSTR>(text);
}

} // namespace tembra
