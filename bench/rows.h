// The benchmarks by subject; each registers its rows. rounds is how often each is measured.
#pragma once

namespace tembra::bench {

void registerCalls(int rounds);   // one entry point at a time
void registerThreads(int rounds); // several threads at once
void registerHandles(int rounds); // hash handles by the number of live ones
void registerHex(int rounds);     // hex texts

} // namespace tembra::bench
