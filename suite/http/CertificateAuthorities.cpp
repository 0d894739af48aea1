#include "CertificateAuthorities.h"

#include <filesystem>
#include <fstream>
#include <mutex>

namespace {

constexpr std::size_t kMaxPemBytes = 8 * 1024 * 1024;

struct DefaultPath {
    std::mutex lock;
    std::wstring path;
};

// Never destroyed: a request may still read it while the process ends.
DefaultPath& Default() {
    static auto* const instance = new DefaultPath;
    return *instance;
}

bool HoldsCertificate(const std::string& pem) {
    return pem.find("-----BEGIN CERTIFICATE-----") != std::string::npos ||
           pem.find("-----BEGIN TRUSTED CERTIFICATE-----") != std::string::npos;
}

}  // namespace

void SetDefaultAuthoritiesPath(const std::wstring& path) {
    const std::lock_guard<std::mutex> hold(Default().lock);
    Default().path = path;
}

std::optional<AuthoritiesPem> AuthoritiesFor(const std::wstring& ownPath) {
    std::wstring path = ownPath;
    if (path.empty()) {
        const std::lock_guard<std::mutex> hold(Default().lock);
        path = Default().path;
    }
    if (path.empty()) {
        return AuthoritiesPem();
    }
    // Read here and not by libcurl, which opens paths in the ANSI code page.
    std::ifstream file(std::filesystem::path(path), std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? std::streamoff(file.tellg()) : -1;
    if (size <= 0 || size > static_cast<std::streamoff>(kMaxPemBytes)) {
        return std::nullopt;
    }
    AuthoritiesPem pem(static_cast<std::size_t>(size), '\0');
    file.seekg(0);
    if (!file.read(pem.data(), size) || !HoldsCertificate(pem)) {
        return std::nullopt;
    }
    return pem;
}
