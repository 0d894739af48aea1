#pragma once

#include <string>

namespace suite {

struct SystemIdentity {
    std::wstring uuid;  // empty only when the system's random source fails
    std::string fault;  // why it is not the stored one, UTF-8; empty when it is
};

// The identity kept in "<stateFolder>\device-uuid": 32 lower-case hexadecimal digits. Made from the system's random
// source when the file is missing or can be read and holds anything else; folders are created. Processes that do this
// at once get one value. A file that somebody else holds is waited for, two seconds at most. When the file cannot be
// read, which changes nothing about it, or not be written, the value is new on every call and goes with a fault.
SystemIdentity LoadOrCreateSystemUuid(const std::wstring& stateFolder);

}  // namespace suite
