#pragma once

namespace host {

// From here on Ctrl-C, or closing the console, does not end the program at once. It ends the program's connections:
// the running step fails, and the program ends as after any failed step, with its temporary files removed.
void WatchForInterruption();

bool Interrupted();

// A kernel event for waits; set once the program is interrupted.
void* InterruptionEvent();

}  // namespace host
