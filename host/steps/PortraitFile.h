#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace host {

struct PortraitFile {
    std::string fault;  // why it cannot be read; empty when it was
    std::uintmax_t bytes = 0;
    std::string imageType = {};  // "PNG", "JPEG", "GIF" or "other", by its first bytes
};

// Looks at a downloaded portrait. The service announces the file before it closes it: while somebody has it open for
// writing this waits, at most the given time.
PortraitFile ReadPortraitFile(const std::filesystem::path& file, std::chrono::milliseconds longest);

}  // namespace host
