#include "CertificateAuthorities.h"

#if defined(_WIN32)
#include <windows.h>
#endif

#include <filesystem>
#include <fstream>
#include <mutex>
#include <system_error>

namespace suite {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMaxPemBytes = 8'000'000;  // libcurl takes no more

// What tells one state of a file from another without reading it.
struct FileStamp {
    std::wstring path;
    std::uintmax_t size = 0;
    std::int64_t written = 0;  // in the system's own units

    bool operator==(const FileStamp& other) const {
        return path == other.path && size == other.size && written == other.written;
    }
};

// Looks at the file, at a link's target; false when that is not possible.
bool LookThroughLinks(FileStamp& stamp) {
    std::error_code sizeError;
    std::error_code timeError;
    stamp.size = fs::file_size(stamp.path, sizeError);
    stamp.written = fs::last_write_time(stamp.path, timeError).time_since_epoch().count();
    return !sizeError && !timeError;
}

// The same. Every request does it, so the system is asked once, unless the file is a link: of that the one question
// tells the link's own size, which is 0, and its own time.
bool Look(FileStamp& stamp) {
#if defined(_WIN32)
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(stamp.path.c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return false;
    }
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return LookThroughLinks(stamp);
    }
    const auto joined = [](DWORD high, DWORD low) { return static_cast<std::uint64_t>(high) << 32 | low; };
    stamp.size = joined(data.nFileSizeHigh, data.nFileSizeLow);
    stamp.written =
        static_cast<std::int64_t>(joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime));
    return true;
#else
    return LookThroughLinks(stamp);
#endif
}

struct Authorities {
    std::mutex lock;
    std::wstring defaultPath;
    FileStamp readStamp;
    std::shared_ptr<const AuthoritiesPem> read;
    const std::shared_ptr<const AuthoritiesPem> none = std::make_shared<const AuthoritiesPem>();
};

// Never destroyed: a request may still read it while the process ends.
Authorities& Shared() {
    static auto* const instance = new Authorities;
    return *instance;
}

bool HoldsCertificate(const std::string& pem) {
    return pem.find("-----BEGIN CERTIFICATE-----") != std::string::npos ||
           pem.find("-----BEGIN TRUSTED CERTIFICATE-----") != std::string::npos;
}

// Read here and not by libcurl, which opens paths in the ANSI code page.
std::shared_ptr<const AuthoritiesPem> ReadPem(const FileStamp& stamp) {
    if (stamp.size > kMaxPemBytes) {
        return nullptr;
    }
    std::ifstream file(fs::path(stamp.path), std::ios::binary);
    AuthoritiesPem pem(static_cast<std::size_t>(stamp.size), '\0');
    const bool whole = file.is_open() && file.read(pem.data(), static_cast<std::streamsize>(pem.size()));
    return whole && HoldsCertificate(pem) ? std::make_shared<const AuthoritiesPem>(std::move(pem)) : nullptr;
}

}  // namespace

void SetDefaultAuthoritiesPath(const std::wstring& path) {
    const std::lock_guard<std::mutex> hold(Shared().lock);
    Shared().defaultPath = path;
}

std::shared_ptr<const AuthoritiesPem> AuthoritiesFor(const std::wstring& ownPath) {
    FileStamp stamp{ownPath, 0, 0};
    if (stamp.path.empty()) {
        const std::lock_guard<std::mutex> hold(Shared().lock);
        stamp.path = Shared().defaultPath;
    }
    if (stamp.path.empty()) {
        return Shared().none;
    }
    if (!Look(stamp)) {
        return nullptr;
    }
    {
        const std::lock_guard<std::mutex> hold(Shared().lock);
        if (Shared().read && Shared().readStamp == stamp) {
            return Shared().read;
        }
    }
    std::shared_ptr<const AuthoritiesPem> pem = ReadPem(stamp);
    if (pem) {
        const std::lock_guard<std::mutex> hold(Shared().lock);
        Shared().readStamp = stamp;
        Shared().read = pem;
    }
    return pem;
}

}  // namespace suite
