#include "system/SystemError.h"

#include "system/HostError.h"

namespace host {

void FailWithSystemError(const std::string& what, unsigned long code) {
    throw HostError(kExitStepFailed, what + ": system error " + std::to_string(code));
}

}  // namespace host
