#include "SystemUuid.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <system_error>

#include "Utf8Text.h"

namespace suite {
namespace {

constexpr std::size_t kUuidBytes = 16;
constexpr std::size_t kUuidDigits = 2 * kUuidBytes;
constexpr DWORD kLockTimeoutMilliseconds = 5000;
constexpr int kMoveAttempts = 5;
constexpr DWORD kRetryMilliseconds = 20;
constexpr DWORD kReadTimeoutMilliseconds = 2000;

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

// Reads the file's start: one byte more than an identity has, to notice a longer file. The system's error code.
DWORD ReadStart(const std::wstring& file, std::string& text) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const OwnedHandle handle(
        CreateFileW(file.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    text.assign(kUuidDigits + 1, '\0');
    DWORD count = 0;
    if (handle.get() == INVALID_HANDLE_VALUE ||
        !ReadFile(handle.get(), text.data(), static_cast<DWORD>(text.size()), &count, nullptr)) {
        return GetLastError();
    }
    text.resize(count);
    return ERROR_SUCCESS;
}

bool IsHeld(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

// As above; waits while somebody holds the file.
DWORD ReadStartPatiently(const std::wstring& file, std::string& text) {
    const ULONGLONG end = GetTickCount64() + kReadTimeoutMilliseconds;
    DWORD error = ReadStart(file, text);
    while (IsHeld(error) && GetTickCount64() < end) {
        Sleep(kRetryMilliseconds);
        error = ReadStart(file, text);
    }
    return error;
}

bool IsUuid(const std::string& text) {
    return text.size() == kUuidDigits && std::all_of(text.begin(), text.end(), IsUuidDigit);
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
// old content or the whole new one. The system's error code.
DWORD WriteUuid(const std::wstring& file, const std::string& digits) {
    const std::wstring temporary = file + L".tmp";
    {
        const OwnedHandle handle(
            CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        if (handle.get() == INVALID_HANDLE_VALUE ||
            !WriteFile(handle.get(), digits.data(), static_cast<DWORD>(digits.size()), &written, nullptr) ||
            !FlushFileBuffers(handle.get())) {
            return GetLastError();
        }
    }
    for (int attempt = 0; attempt < kMoveAttempts; ++attempt) {
        if (MoveFileExW(temporary.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            return ERROR_SUCCESS;
        }
        Sleep(kRetryMilliseconds);  // a virus scanner or backup may hold the old file open
    }
    const DWORD error = GetLastError();
    DeleteFileW(temporary.c_str());
    return error;
}

std::wstring Wide(const std::string& digits) {
    return std::wstring(digits.begin(), digits.end());
}

std::string Fault(const std::wstring& file, const char* what, DWORD error) {
    return Utf8FromWide(file) + ": " + what + ": system error " + std::to_string(error);
}

}  // namespace

SystemIdentity LoadOrCreateSystemUuid(const std::wstring& stateFolder) {
    if (stateFolder.empty()) {
        return {Wide(NewUuid()), "there is no folder to keep the system UUID in"};
    }
    // Joined by hand: after a bare "C:" the path class adds no separator, and the name would lie in the drive's current
    // folder.
    const std::wstring folder = stateFolder + L"\\";
    const std::wstring file = folder + L"device-uuid";
    // Reading is inside too: a reader's open file would keep another process from replacing it.
    const CrossProcessLock lock;
    std::string stored;
    const DWORD readError = ReadStartPatiently(file, stored);
    const bool missing = readError == ERROR_FILE_NOT_FOUND || readError == ERROR_PATH_NOT_FOUND;
    if (readError != ERROR_SUCCESS && !missing) {
        // Perhaps there is an identity in it: it is left alone.
        return {Wide(NewUuid()), Fault(file, "cannot be read", readError)};
    }
    if (!missing && IsUuid(stored)) {
        return {Wide(stored), ""};
    }
    const std::string digits = NewUuid();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const DWORD writeError = WriteUuid(file, digits);
    return {Wide(digits), writeError == ERROR_SUCCESS ? "" : Fault(file, "cannot be written", writeError)};
}

}  // namespace suite
