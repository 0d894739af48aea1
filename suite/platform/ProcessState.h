#pragma once

namespace suite {

// Keeps the module that calls it loaded until the process ends: what it started or shares lives in it.
void PinThisModule() noexcept;

// True once the process has begun to end and its other threads are gone, perhaps while they held a lock. From then on
// a library must touch neither its locks nor its threads: a wait would never end.
bool ProcessIsEnding() noexcept;

}  // namespace suite
