#pragma once

#include <string_view>
#include <vector>

namespace sandbox {

// A file of the page, embedded at build time.
struct PageFile {
    std::string_view name;
    std::string_view bytes;
};

const std::vector<PageFile>& PageFiles();

}  // namespace sandbox
