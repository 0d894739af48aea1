#pragma once

#include <string>

namespace host {

// Throws HostError with kExitStepFailed: what failed, and the system's error code (GetLastError).
[[noreturn]] void FailWithSystemError(const std::string& what, unsigned long code);

}  // namespace host
