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

} // namespace tembra::token
