#pragma once

#include <filesystem>

// A module handle as the platform's own headers declare it, without including them.
struct HINSTANCE__;

namespace accountsdk {

// Folder of this library's file; empty when the system does not tell.
std::filesystem::path OwnModuleFolder();

// One more reference to this library, which keeps it loaded; null on failure. Whoever holds it gives it back with
// FreeLibraryAndExitThread: code of the library itself cannot run FreeLibrary and then return.
HINSTANCE__* ReferenceOwnModule();

}  // namespace accountsdk
