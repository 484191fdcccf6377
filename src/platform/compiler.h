// What differs between compilers.
#pragma once

// Lets the compiler check a printf-style format against its arguments; the indices count from 1.
#if defined(__MINGW32__)
#define TEMBRA_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#elif defined(__GNUC__) || defined(__clang__)
#define TEMBRA_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define TEMBRA_PRINTF(text, first)
#endif
