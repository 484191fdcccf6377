/* Planned faults, the call journal and call counts of the development kit's libraries, for programs
 * that load them in-process. C11 and C++. All functions are thread-safe; every text is UTF-8.
 *
 * The software token (QXSKFAPI) exports the TembraSoftToken... functions, the stand-in host library
 * (ORVEL_CRYPTO) the TembraHostKit... ones. Each library has a plan, a journal and counters of its
 * own; both start from the same two environment variables:
 *
 *   TEMBRA_SOFT_TOKEN_FAULTS    the fault plan
 *   TEMBRA_SOFT_TOKEN_JOURNAL   the path of the journal
 *
 * They are read once, at the first call into the library; what a function below sets replaces them.
 *
 * Fault plan: entries separated by commas; white space around an entry is ignored. The call that an
 * entry names answers its code and does nothing else.
 *
 *   NAME:N=CODE    the Nth call of the function (N counts from 1)
 *   NAME:N+=CODE   the Nth call and every later one
 *   NAME:*=CODE    every call
 *   *:N=CODE       the Nth call of any function, counted over all functions of the library
 *                  (*:N+= and *:*= accordingly)
 *
 * NAME is an exported SKF_... or OrvelPKICrypto... name; entries for the other library are ignored,
 * so one plan serves both. CODE is decimal or 0x hexadecimal, up to 32 bits; of a function of the
 * host library it is the int that is returned, and a function that returns a pointer returns null.
 * When several entries name one call, the first counts. A text with a bad entry is refused as a
 * whole, and the entry is named on the standard error output.
 *
 * Journal: a line of JSON for every call, appended in one piece, to a file created with access for
 * its owner only (mode 0600):
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

/* Sets the fault plan and restarts the call counters at 0. plan: NUL-terminated text as above,
 * copied; null or "" removes the plan. Returns 1; or 0 for a bad plan, and the old one stays. */
int TembraSoftTokenSetFaults(const char *plan);
int TembraHostKitSetFaults(const char *plan);

/* Appends the journal to this file from now on. path: NUL-terminated, copied; null or "" stops the
 * journal. Returns 1; or 0 when the file cannot be opened, and the old journal goes on. */
int TembraSoftTokenSetJournal(const char *path);
int TembraHostKitSetJournal(const char *path);

/* The number of calls of a function since the start or the last plan, those answered by the plan
 * included; of all functions when function is null, 0 for a name that is not exported. */
unsigned long long TembraSoftTokenCallCount(const char *function);
unsigned long long TembraHostKitCallCount(const char *function);

/* The buffers, public keys and devices that the stand-in host library has handed out and not got
 * back: 0 in a program that leaks none. */
unsigned long long TembraHostKitLiveBlocks(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
