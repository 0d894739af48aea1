#include "steps/ContactsFile.h"

#include <windows.h>

#include <chrono>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

#include "text/TextEncoding.h"

namespace host {

PartFile::PartFile(std::filesystem::path wanted)
    : m_path(std::move(wanted += L"." + std::to_wstring(GetCurrentProcessId()) + L".part")) {
    Delete();
}

void PartFile::Delete() const {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

bool PartFile::Exists() const {
    std::error_code error;
    return std::filesystem::exists(m_path, error) || error;
}

bool PartFile::Replace(const std::filesystem::path& wanted) const {
    using std::filesystem::perms;
    constexpr int kAttempts = 20;
    constexpr std::chrono::milliseconds kPause{50};
    std::error_code error;
    const std::filesystem::file_status before = std::filesystem::status(wanted, error);
    // The system's rename refuses a read-only file, but Wine's takes it.
    if (std::filesystem::exists(before) && (before.permissions() & perms::owner_write) == perms::none) {
        return false;
    }
    std::filesystem::rename(m_path, wanted, error);
    // A virus scanner may have one of them open for a moment.
    for (int attempt = 1; error && attempt < kAttempts; ++attempt) {
        std::this_thread::sleep_for(kPause);
        std::filesystem::rename(m_path, wanted, error);
    }
    return !error;
}

bool PartFile::IsDiskFull() const {
    constexpr std::uintmax_t kLargestBlock = 128 * 1024;
    std::error_code error;
    return std::filesystem::space(std::filesystem::absolute(m_path).parent_path(), error).available < kLargestBlock;
}

VcardFile ReadVcardFile(const std::filesystem::path& file) {
    VcardFile found;
    std::ifstream stream(file, std::ios::binary);
    std::error_code error;
    found.bytes = std::filesystem::file_size(file, error);
    found.read = stream.is_open() && !error;
    for (std::string line; std::getline(stream, line);) {
        line = AsciiLower(Trimmed(line));
        found.cards += line == "begin:vcard" ? 1 : 0;
        found.whole = line == "end:vcard" || (found.whole && line.empty());  // empty lines may follow
    }
    return found;
}

}  // namespace host
