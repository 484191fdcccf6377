// What lives from DeviceInit to DeviceEnd beside the settings and the lock.
#pragma once

namespace tembra {

// The host library's software device, for its random numbers and for public-key import.
extern void *g_pseudoDevice;

} // namespace tembra
