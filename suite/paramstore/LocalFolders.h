#pragma once

#include <string>

namespace suite {

// The signed-in Windows user's local application-data folder, without trailing separator; the environment's
// LOCALAPPDATA when the shell knows none; empty when neither does. Looked up once.
std::wstring LocalAppDataFolder();

}  // namespace suite
