#include "system/TemporaryFolder.h"

#include <windows.h>

#include <string>

namespace host {

TemporaryFolder::TemporaryFolder()
    : m_path(std::filesystem::temp_directory_path() / ("userauth-" + std::to_string(GetCurrentProcessId()))) {
    std::filesystem::remove_all(m_path);  // left by an earlier process of this number that was killed
    std::filesystem::create_directories(m_path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

}  // namespace host
