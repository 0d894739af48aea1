#pragma once

#include "request/SmbiosTable.h"

namespace userauth {

// This machine's identity, read on the first call and kept for the life of the process. No lock stands in front of
// every request: two first callers at the same moment may each read it, and the first to be done stays.
const DeviceIdentity& CurrentDeviceIdentity();

// The device name as requests carry it: the system's product name, at most its first 250 characters, with a blank for
// each control character; "PC" when there is no name.
std::wstring DeviceNameHeader(const DeviceIdentity& identity);

}  // namespace userauth
