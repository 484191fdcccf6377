// The key pair table of a device and the lives of the records in it.
//
// A record belongs to its device's table. A deletion takes it out and detaches it (m_device becomes
// null); from then on it belongs to the handles that the host still holds, and the last of them
// frees it. So a handle never points into freed memory, also when a pair was handed out twice or
// its container's other pair was deleted.
#pragma once

#include "provider/records.h"

namespace tembra {

// Appends a record to the table; the caller has seen that there is room. Adds the table's
// reference to the device. Under g_lock, but for a device nobody else knows yet.
void registerKeypair(Device *hDevice, Keypair *hKeypair);

// Counts a handle to the record and a reference to its device. Under g_lock.
void handOutKeypair(Device *hDevice, Keypair *hKeypair);

// Takes a record out of the table and detaches it; frees it where no handle is left. Absent: it is
// detached all the same. m_refCount stays as it is. Under g_lock.
void removeKeypair(Device *hDevice, Keypair *hKeypair);

// What giving a handle back leaves to do.
struct ReturnedHandle {
    Device *hDevice; // to be released; null when the record is detached
    bool isLast;     // the last handle of a detached record: it is to be freed
};
ReturnedHandle takeBackHandle(Keypair *hKeypair);

// Frees a record that no table and no handle holds any more.
void freeKeypair(Keypair *hKeypair);

// The device of a pair, null once the pair was deleted.
Device *deviceOf(const Keypair *hKeypair);

// The container of a pair; null once the pair, or its container through another pair, was deleted.
Container *containerOf(const Keypair *hKeypair);

} // namespace tembra
