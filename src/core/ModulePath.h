#pragma once

#include <string>

struct HINSTANCE__;

namespace userauth {

// Path of a loaded module's file; a path of more than 259 characters comes back truncated.
std::wstring GetModuleFilePath(HINSTANCE__* module);

// The part of a path up to and including its last separator, or the whole path when it ends in one. The first character
// is not looked at. False with the output unchanged when there is no separator.
bool GetParentDirectory(const std::wstring& path, std::wstring& directory);

// Folder of this library's own file, with its trailing separator; empty on failure.
std::wstring GetCurrentModuleDirectory();

}  // namespace userauth
