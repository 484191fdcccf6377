// A token and a host library that answer success with whatever they like: lengths beyond the
// buffer, lists and texts without NUL, odd key sizes, no buffer at all. They never write more than
// they were given room for; nothing could defend against that.
#pragma once

#include "input.h"

namespace tembra::fuzz {

// From now on the functions that give something out lie now and then, as these bytes say; once
// they are used up it is the truth. The source must outlive the run.
void tellLies(Input &source);

} // namespace tembra::fuzz
