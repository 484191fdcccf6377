// The benchmarks by subject.
#pragma once

namespace tembra::bench {

void registerCalls();   // one entry point at a time
void registerThreads(); // several threads at once
void registerHandles(); // hash handles by the number of open ones
void registerHex();     // hex texts

} // namespace tembra::bench
