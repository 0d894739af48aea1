#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace conformance {

// In the order in which they are loaded: one may use those before it.
constexpr const wchar_t* kLibraries[] = {L"Logger", L"EventAdmin", L"ParamStore", L"HttpLib"};

// The folder of this program.
std::filesystem::path ProgramFolder();

// Where a library of the suite comes from: the folder, or this program's where the folder has none.
std::filesystem::path LibraryFile(const std::filesystem::path& folder, const wchar_t* library);

// Loads the suite's libraries, each by its full path, and then the points that are linked against them. What a library
// needs is looked for beside itself, then beside this program, then in the system's folder; never in the current folder
// or in PATH. Throws std::runtime_error, in words, when one cannot be loaded or is there twice.
HMODULE LoadPoints(const std::filesystem::path& folder);

}  // namespace conformance
