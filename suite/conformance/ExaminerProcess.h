#pragma once

#include <string>

namespace conformance {

// Runs this program again with the arguments, on the same console, and waits for it. Returns its exit code; one that
// does not end within ten minutes is ended and counts as failed.
unsigned long RunAgain(const std::wstring& arguments);

}  // namespace conformance
