// The bodies of the functions that tembra_devkit_faults.h declares, once for both libraries.
#pragma once

namespace tembra::door {

// Before the first call or control the plan and the journal come from the environment variables
// TEMBRA_SOFT_TOKEN_FAULTS and TEMBRA_SOFT_TOKEN_JOURNAL. All three are thread-safe and throw
// nothing.

int setFaults(const char *plan) noexcept;  // 1, or 0 for a bad plan; counters restart at 0
int setJournal(const char *path) noexcept; // 1, or 0 when the file cannot be opened
unsigned long long callCount(const char *function) noexcept; // null: of all functions

} // namespace tembra::door
