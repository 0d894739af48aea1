#include "system/Folders.h"

#include <windows.h>

#include <random>
#include <string>

#include "system/HostError.h"

namespace host {
namespace {

// Longest path that the system's wide interfaces know, in characters.
constexpr std::size_t kLongestPath = 32768;

// 64 random bits as decimal digits.
std::string RandomDigits() {
    std::random_device random;
    return std::to_string((std::uint64_t{random()} << 32U) | random());
}

}  // namespace

std::filesystem::path ModuleFile(HINSTANCE__* module) {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::filesystem::path ProgramFolder() {
    return ModuleFile(nullptr).parent_path();
}

TemporaryFolder::TemporaryFolder() : m_path(std::filesystem::temp_directory_path() / ("userauth-" + RandomDigits())) {
    // False when the folder is there already: another user may have made it.
    if (!std::filesystem::create_directory(m_path)) {
        throw HostError(kExitStepFailed, m_path.u8string() + " is there already: try again");
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

}  // namespace host
