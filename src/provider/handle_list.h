// The lists of live hash and cipher records of a device: the same for both.
//
// Threads may make and free handles of one device at the same time, and freeing takes no g_lock, so
// the lists change under the RecordLock.
#pragma once

#include "platform/memory.h"
#include "platform/skf.h"
#include "provider/lock.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tembra {

inline constexpr std::int32_t HANDLE_LIST_STEP = 64;

// Closes the token's handle of a hash or cipher record and frees the record.
template <typename Record>
void closeAndFree(Record *record) {
    if (record->m_handle)
        SKF_CloseHandle(record->m_handle);
    record->m_handle = nullptr;
    std::free(record);
}

// Appends a record, growing the list by 64 slots when it is full. False when memory is short.
template <typename Record>
bool appendHandle(Record **&list, std::int32_t &allocCount, std::int32_t &count, Record *record) {
    const RecordLock lock;
    if (count == allocCount) {
        const std::size_t slots = static_cast<std::size_t>(allocCount) + HANDLE_LIST_STEP;
        auto **grown = static_cast<Record **>(allocateZeroed(slots * sizeof(Record *)));
        if (!grown)
            return false;
        if (list)
            std::memcpy(grown, list, static_cast<std::size_t>(count) * sizeof(Record *));
        std::free(list);
        list = grown;
        allocCount += HANDLE_LIST_STEP;
    }
    list[count++] = record;
    return true;
}

// Takes a record out of its list, the later ones move down; one that is not in it does nothing. The
// list comes by reference, since until the lock is held another thread may put a grown one there.
template <typename Record>
void removeHandle(Record **const &list, std::int32_t &count, const Record *record) {
    const RecordLock lock;
    for (std::int32_t i = 0; i < count; ++i) {
        if (list[i] != record)
            continue;
        --count;
        std::memmove(&list[i], &list[i + 1],
                     static_cast<std::size_t>(count - i) * sizeof(Record *));
        list[count] = nullptr;
        return;
    }
}

// Destroys a list with the records in it, when their device is destroyed.
template <typename Record>
void freeHandleList(Record **list, std::int32_t count) {
    for (std::int32_t i = 0; list && i < count; ++i)
        if (list[i])
            closeAndFree(list[i]);
    std::free(list);
}

} // namespace tembra
