// The functions of the host framework's crypto library, ORVEL_CRYPTO, that the provider calls.
//
// A function that returns int returns 1 on success. A buffer returned through `unsigned char **`
// belongs to the library and must be passed to OrvelPKICryptoFreeMemory. Lengths are in bytes,
// large integers are big-endian, and encodings are the library's own.
#pragma once

extern "C" {
#define TEMBRA_IMPORT(result, name, parameters) result name parameters;
#include "platform/orvel_crypto_functions.h"
#undef TEMBRA_IMPORT
}
