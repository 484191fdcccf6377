// The lists of live hash and cipher records of a device.
//
// Records are appended under g_lock but removed without it, so the lists change under the
// RecordLock. Blocks are allocated and freed outside it.
#pragma once

#include "platform/memory.h"
#include "platform/skf.h"
#include "provider/lock.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

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

// False if the list is full.
template <typename Record>
bool appendIfRoom(Record **const &list, std::int32_t allocCount, std::int32_t &count,
                  Record *record) {
    const RecordLock lock;
    if (count == allocCount)
        return false;
    list[count++] = record;
    return true;
}

// Adds 64 slots. False if out of memory.
template <typename Record>
bool growList(Record **&list, std::int32_t &allocCount, const std::int32_t &count) {
    const std::size_t slots = static_cast<std::size_t>(allocCount) + HANDLE_LIST_STEP;
    auto **unused = static_cast<Record **>(allocateZeroed(slots * sizeof(Record *)));
    if (!unused)
        return false;
    {
        const RecordLock lock;
        std::copy_n(list, count, unused);
        std::swap(list, unused);
        allocCount += HANDLE_LIST_STEP;
    }
    std::free(unused);
    return true;
}

// Appends a record, growing a full list. False if out of memory. Requires g_lock.
template <typename Record>
bool appendHandle(Record **&list, std::int32_t &allocCount, std::int32_t &count, Record *record) {
    return appendIfRoom(list, allocCount, count, record) ||
           (growList(list, allocCount, count) && appendIfRoom(list, allocCount, count, record));
}

// Removes a record from its list, if it is there; later ones move down. The list is passed by
// reference because another thread may replace it until the lock is held.
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

// Destroys a list and its records together with their device.
template <typename Record>
void freeHandleList(Record **list, std::int32_t count) {
    for (std::int32_t i = 0; list && i < count; ++i)
        if (list[i])
            closeAndFree(list[i]);
    std::free(list);
}

} // namespace tembra
