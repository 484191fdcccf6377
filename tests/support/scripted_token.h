// A token and a host library that return what a test wants (ELF only).
//
// The test program itself exports all functions that the provider imports, so the provider calls
// these instead of the kit's libraries. By default they are a small token in memory.
#pragma once

#include "memory_token.h"
#include "scripted_function.h"

namespace tembra::test {

struct TokenScript {
    std::vector<std::string> journal; // names of the functions called, in order
    MemoryToken memory;
    MemoryHost host;

#define TEMBRA_IMPORT(result, name, parameters)                                                    \
    Scripted<result parameters> name{#name, journal, &memory_token::name};
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
};

// The current script; resetScript() replaces it with a fresh one.
TokenScript &script();
void resetScript();

} // namespace tembra::test
