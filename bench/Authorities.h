#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "crypto/Certificates.h"

namespace bench {

// An authority among certificates that nobody uses: 220 KB of PEM.
inline std::string Bundle(const std::string& authority) {
    constexpr std::size_t kBundleBytes = 220 * 1024;
    std::string pem = authority;
    for (int i = 0; pem.size() < kBundleBytes; ++i) {
        pem += sandbox::MakeServerIdentity("other-" + std::to_string(i) + ".example").authorityPem;
    }
    return pem;
}

// A file in the folder for temporary ones, named after the process: another one's authority is not this one's.
inline std::filesystem::path WriteText(const std::string& name, const std::string& text) {
    std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("bench-" + std::to_string(GetCurrentProcessId()) + name);
    std::ofstream(file, std::ios::binary) << text;
    return file;
}

}  // namespace bench
