/* Fault plans, the call journal and call counts of the development kit's libraries, for programs
 * that load them in-process. C11 and C++. All functions are thread-safe; every text is UTF-8.
 *
 * The software token (QXSKFAPI) exports the TembraSoftToken... functions, the stand-in host library
 * (ORVEL_CRYPTO) the TembraHostKit... ones. Each library has its own plan, journal and counters.
 * The first call into a library reads the initial values from the environment variables
 * TEMBRA_SOFT_TOKEN_FAULTS (a fault plan) and TEMBRA_SOFT_TOKEN_JOURNAL (the path of a journal).
 *
 * A fault plan is a list of entries separated by commas; white space around an entry is ignored. A
 * call that matches an entry returns its code and has no other effect.
 *
 *   NAME:N=CODE    the Nth call of the function (N counts from 1)
 *   NAME:N+=CODE   the Nth call and every later one
 *   NAME:*=CODE    every call
 *   *:N=CODE       the Nth call of any function of the library (*:N+= and *:*= likewise)
 *
 * NAME is an exported SKF_... or OrvelPKICrypto... name. Entries for the other library are ignored,
 * so one plan can serve both. CODE is a decimal or 0x hexadecimal number of up to 32 bits;
 * functions of the host library return it as an int, or null if they return a pointer. The first
 * matching entry applies. If an entry is bad, the whole plan is refused and the entry is reported
 * on standard error.
 *
 * The journal is a file of mode 0600 to which every call appends one line of JSON:
 *
 *   {"seq":7,"thread":4711,"function":"SKF_GenRandom","args":{"hDev":"0x5581","ulRandomLen":16},
 *    "out":{},"result":"0x00000000","planned":false,"us":12}
 *
 * seq numbers the calls into the library since its start; us is the duration in microseconds.
 * A buffer is {"len":length,"hex":up to 32 bytes}; PINs, keys and plaintext are "***". */
#ifndef TEMBRA_DEVKIT_FAULTS_H
#define TEMBRA_DEVKIT_FAULTS_H

#ifdef __cplusplus
extern "C" {
#endif

/* Sets the fault plan and resets the call counters. plan: null or "" removes the plan. Returns 1,
 * or 0 if the plan is bad; the old one then stays. */
int TembraSoftTokenSetFaults(const char *plan);
int TembraHostKitSetFaults(const char *plan);

/* Sets the file of the journal. path: null or "" stops the journal. Returns 1, or 0 if the file
 * cannot be opened; the old journal then continues. */
int TembraSoftTokenSetJournal(const char *path);
int TembraHostKitSetJournal(const char *path);

/* The number of calls of a function since the start or the last plan, including those that the plan
 * answered. function: null for all functions. 0 for a name that is not exported. */
unsigned long long TembraSoftTokenCallCount(const char *function);
unsigned long long TembraHostKitCallCount(const char *function);

/* The number of buffers, public keys and devices of the host library that have not been freed. */
unsigned long long TembraHostKitLiveBlocks(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
