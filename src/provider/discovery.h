// Finds the tokens and builds their records.
#pragma once

#include "provider/records.h"

namespace tembra {

// Connects one token and adds a device for each of its applications, or one unformatted device.
// Skips a token that cannot be read, with a line in the trace. Returns false if the set is full.
// Requires g_lock.
bool addDevice(DeviceSet *hSet, const char *name);

// Creates the record for an opened application with all its containers and key pairs. Takes over
// the application and the token. Returns null on failure.
Device *createKeyHandle(DEVHANDLE hDev, HAPPLICATION hApp, const char *appName,
                        const DEVINFO *info);

// Creates the record for a token without an application. Returns null on failure.
Device *createEmptyKeyHandle(DEVHANDLE hDev, const DEVINFO *info);

} // namespace tembra
