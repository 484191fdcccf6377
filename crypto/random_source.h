// Where libgcrypt gets its random numbers from, a choice for each system.
#pragma once

namespace tembra::crypto {

// Called once, before anything else of libgcrypt.
void chooseRandomSource();

} // namespace tembra::crypto
