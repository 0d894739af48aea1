#include "SystemUuid.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

namespace suite {
namespace {

constexpr std::size_t kUuidBytes = 16;
constexpr std::size_t kUuidDigits = 2 * kUuidBytes;
constexpr DWORD kLockTimeoutMilliseconds = 5000;
constexpr int kMoveAttempts = 5;
constexpr DWORD kMoveRetryMilliseconds = 20;

struct HandleClose {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE) {
            CloseHandle(handle);
        }
    }
};
using OwnedHandle = std::unique_ptr<HANDLE, HandleClose>;

// Lets one process at a time of this session look and write. After the time-out work goes on without it: a
// process that hangs inside must not take the others' identity away.
class CrossProcessLock {
public:
    CrossProcessLock() : m_mutex(CreateMutexW(nullptr, FALSE, L"Local\\UserAuthService.device-uuid")) {
        const DWORD result = m_mutex ? WaitForSingleObject(m_mutex.get(), kLockTimeoutMilliseconds) : WAIT_FAILED;
        m_held = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    }
    ~CrossProcessLock() {
        if (m_held) {
            ReleaseMutex(m_mutex.get());
        }
    }
    CrossProcessLock(const CrossProcessLock&) = delete;
    CrossProcessLock& operator=(const CrossProcessLock&) = delete;

private:
    OwnedHandle m_mutex;
    bool m_held = false;
};

bool IsUuidDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

// The stored digits, or empty text.
std::string ReadUuid(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(kUuidDigits + 1, '\0');  // one more than wanted, to notice a longer file
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    const bool valid = text.size() == kUuidDigits && std::all_of(text.begin(), text.end(), IsUuidDigit);
    return valid ? text : std::string();
}

std::string NewUuid() {
    std::array<unsigned char, kUuidBytes> bytes{};
    if (BCryptGenRandom(nullptr, bytes.data(), static_cast<ULONG>(bytes.size()), BCRYPT_USE_SYSTEM_PREFERRED_RNG) < 0) {
        return std::string();
    }
    std::string digits;
    for (const unsigned char byte : bytes) {
        digits += "0123456789abcdef"[byte >> 4];
        digits += "0123456789abcdef"[byte & 0x0F];
    }
    return digits;
}

// Written beside the file, on the disk before the name changes: a reader, or a restart after a power cut, finds the
// old content or the whole new one.
void WriteUuid(const std::filesystem::path& file, const std::string& digits) {
    const std::wstring temporary = file.wstring() + L".tmp";
    {
        const OwnedHandle handle(
            CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        if (handle.get() == INVALID_HANDLE_VALUE ||
            !WriteFile(handle.get(), digits.data(), static_cast<DWORD>(digits.size()), &written, nullptr) ||
            written != digits.size() || !FlushFileBuffers(handle.get())) {
            return;
        }
    }
    for (int attempt = 0; attempt < kMoveAttempts; ++attempt) {
        if (MoveFileExW(temporary.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            return;
        }
        Sleep(kMoveRetryMilliseconds);  // a virus scanner or backup may hold the old file open
    }
    DeleteFileW(temporary.c_str());
}

}  // namespace

std::wstring LoadOrCreateSystemUuid(const std::wstring& stateFolder) {
    // Joined by hand: after a bare "C:" the path class adds no separator, and the name would lie in the drive's current
    // folder.
    const std::wstring folder = stateFolder + L"\\";
    const std::filesystem::path file = folder + L"device-uuid";
    std::string digits;
    if (stateFolder.empty()) {
        digits = NewUuid();
    } else {
        // Reading is inside too: a reader's open file would keep another process from replacing it.
        const CrossProcessLock lock;
        digits = ReadUuid(file);
        if (digits.empty()) {
            digits = NewUuid();
            std::error_code ignored;
            std::filesystem::create_directories(folder, ignored);
            WriteUuid(file, digits);
        }
    }
    return std::wstring(digits.begin(), digits.end());
}

}  // namespace suite
