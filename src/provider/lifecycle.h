// State that exists from DeviceInit to DeviceEnd, apart from the settings and the lock.
#pragma once

namespace tembra {

// The host library's software device, used for random numbers and public-key import.
extern void *g_pseudoDevice;

} // namespace tembra
