#pragma once

#include "request/SmbiosTable.h"

namespace userauth {

// This machine's identity, read on the first call and kept for the life of the process. Two first callers at the same
// moment may each make one, of which one is never freed: accepted, so that no lock stands in front of every request.
const DeviceIdentity& CurrentDeviceIdentity();

// The device name as requests carry it: the system's product name, at most its first 250 characters, or "PC".
std::wstring DeviceNameHeader(const DeviceIdentity& identity);

}  // namespace userauth
