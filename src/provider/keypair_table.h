// The key pair table of a device and the lifetime of its records.
//
// A record belongs to its device's table. A deletion removes and detaches it (m_device becomes
// null); from then on it belongs to the handles that the host still holds, and the last of them
// frees it. So a handle stays valid until it is freed, even if another handle deleted its pair or
// container.
#pragma once

#include "provider/records.h"

namespace tembra {

// Whether no further record fits, and the line that says so.
bool isTableFull(const Device *hDevice);
inline constexpr const char *TABLE_FULL = "hDevice->m_keypairCount >= KEYPAIR_COUNT_MAX";

// Appends a record for the container at m_index to a table that is not full. Adds the table's
// reference to the device. Requires g_lock unless the device is still private to discovery.
void registerKeypair(Device *hDevice, Keypair *hKeypair);

// Counts a handle to the record and a reference to its device. Requires g_lock.
void handOutKeypair(Device *hDevice, Keypair *hKeypair);

// Removes a record from the table, if it is there, and detaches it; frees it if no handle is left.
// Does not change m_refCount. Requires g_lock.
void removeKeypair(Device *hDevice, Keypair *hKeypair);

// What remains to be done for a handle that was given back.
struct ReturnedHandle {
    Device *hDevice; // to be released; null if the record is detached
    bool isLast;     // no handle to the detached record is left: free it
};
ReturnedHandle takeBackHandle(Keypair *hKeypair);

// Frees a record that neither a table nor a handle holds.
void freeKeypair(Keypair *hKeypair);

// The device of a pair; null once the pair was deleted.
Device *deviceOf(const Keypair *hKeypair);

// The container of a pair; null once the pair, or its container through another pair, was deleted,
// even if another container has taken the slot.
Container *containerOf(const Keypair *hKeypair);

// The line that says why containerOf() returned null.
const char *missingContainer(const Keypair *hKeypair);

} // namespace tembra
