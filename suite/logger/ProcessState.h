#pragma once

// Keeps this module loaded until the process ends: its queue thread runs in it.
void PinThisModule() noexcept;

// True once the process has begun to end and its other threads are gone, perhaps while they held a lock. From then on
// the logger must touch neither its locks nor its thread.
bool ProcessIsEnding() noexcept;
