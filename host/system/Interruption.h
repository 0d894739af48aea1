#pragma once

namespace host {

// From here on Ctrl-C and the like do not end the program on the spot: they end its connections, so that what runs
// fails and the program leaves by its usual way, with its files removed. Also when the console's window is closed.
void WatchForInterruption();

bool Interrupted();

// Event of the system that is set from the interruption on.
void* InterruptionEvent();

}  // namespace host
