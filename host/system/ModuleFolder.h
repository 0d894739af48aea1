#pragma once

#include <filesystem>

namespace host {

// Folder of this program's file.
std::filesystem::path ProgramFolder();

// File of the account SDK that the service loaded; empty when it did not.
std::filesystem::path LoadedAccountSdk();

}  // namespace host
