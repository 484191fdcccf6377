// Random numbers fit for keys.
#pragma once

#include <cstdint>
#include <span>

namespace tembra::crypto {

// Fills the buffer from libgcrypt's strong generator. Thread-safe.
void fillRandom(std::span<std::uint8_t> out);

// Selects libgcrypt's source of random numbers; called once, before any other function of it.
void chooseRandomSource();

} // namespace tembra::crypto
