// Differences between compilers.
#pragma once

// Checks the arguments of a printf-style format at compile time; the indices count from 1.
#if defined(__MINGW32__)
#define TEMBRA_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#elif defined(__GNUC__) || defined(__clang__)
#define TEMBRA_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define TEMBRA_PRINTF(text, first)
#endif
