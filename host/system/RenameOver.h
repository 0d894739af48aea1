#pragma once

#include <filesystem>

namespace host {

// Renames a finished file over another, which may not exist. Tries for a second, because somebody else may have one of
// them open for a moment: the SDK of another program, or a virus scanner. False when it did not succeed.
bool RenameOver(const std::filesystem::path& finished, const std::filesystem::path& file);

}  // namespace host
