// Finding the tokens and building the records for them.
#pragma once

#include "provider/records.h"

namespace tembra {

// Connects one token and adds a device for each of its applications, or one unformatted device. A
// token that cannot be read is skipped with its line in the trace. False when the set is full: the
// walk over the tokens ends. Called under g_lock.
bool addDevice(DeviceSet *hSet, const char *name);

// The record for an opened application with all its containers and key pairs; takes the application
// and the token over. Null on failure.
Device *createKeyHandle(DEVHANDLE hDev, HAPPLICATION hApp, const char *appName,
                        const DEVINFO *info);

// The record for a token without application. Null on failure.
Device *createEmptyKeyHandle(DEVHANDLE hDev, const DEVINFO *info);

} // namespace tembra
