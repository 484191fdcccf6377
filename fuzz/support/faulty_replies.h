// A token and a host library that report success with arbitrary outputs: lengths beyond the buffer,
// lists and texts without NUL, odd key sizes, no buffer at all. They never write beyond a buffer,
// since a caller cannot defend against that.
#pragma once

#include "input.h"

namespace tembra::fuzz {

// From now on the functions with outputs return faulty ones where the bytes of `source` say so, and
// correct ones when it is used up. The source must outlive the run.
void scriptFaultyReplies(Input &source);

} // namespace tembra::fuzz
