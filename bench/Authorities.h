#pragma once

#include <openssl/pem.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "crypto/Certificates.h"

namespace bench {

// An authority among certificates that nobody uses: 220 KB of PEM.
inline std::string Bundle(const std::string& authority) {
    constexpr std::size_t kBundleBytes = 220 * 1024;
    std::string pem = authority;
    for (int i = 0; pem.size() < kBundleBytes; ++i) {
        const sandbox::ServerIdentity other = sandbox::MakeServerIdentity("other-" + std::to_string(i) + ".example");
        const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
        PEM_write_bio_X509(memory.get(), other.certificate.get());
        char* text = nullptr;
        const long size = BIO_get_mem_data(memory.get(), &text);
        pem.append(text, static_cast<std::size_t>(size));
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
