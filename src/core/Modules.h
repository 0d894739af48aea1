#pragma once

#include <string>

#include "OwnedModule.h"

namespace userauth {

// Path of a loaded module's file; a path of more than 259 characters comes back truncated.
std::wstring GetModuleFilePath(HINSTANCE__* module);

// The part of a path up to and including its last separator, or the whole path when it ends in one. The first character
// is not looked at. False with the output unchanged when there is no separator.
bool GetParentDirectory(const std::wstring& path, std::wstring& directory);

// Folder of this library's own file, with its trailing separator; empty on failure.
std::wstring GetCurrentModuleDirectory();

// Keeps this library in memory for a thread that runs its code.
class ModuleReference {
public:
    ModuleReference();
    ModuleReference(ModuleReference&&) = default;

    // Gives the reference back once the calling thread has ended: code of this library still runs after its last
    // statement. When that cannot be arranged the library stays loaded. docs/decisions/0007-portrait-thread.md.
    void ReleaseWhenThisThreadHasEnded();

private:
    OwnedModule m_module;
};

}  // namespace userauth
