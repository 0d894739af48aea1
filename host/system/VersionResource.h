#pragma once

#include <filesystem>
#include <string>

namespace host {

// A text of a file's version resource, such as FileVersion, UTF-8; empty when there is none.
std::string VersionText(const std::filesystem::path& file, const wchar_t* name);

}  // namespace host
