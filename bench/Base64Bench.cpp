#include <openssl/evp.h>

#include "Subjects.h"
#include "core/Base64.h"

namespace bench {
namespace {

std::string Bytes(std::size_t count) {
    std::string bytes;
    for (unsigned value = 7; bytes.size() < count; value = value * 1103515245 + 12345) {
        bytes += static_cast<char>(value >> 16);
    }
    return bytes;
}

const unsigned char* Unsigned(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

std::string Encoded(const std::string& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    const int length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), Unsigned(bytes), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string Decoded(const std::string& text) {
    std::string bytes(text.size() / 4 * 3, '\0');
    EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()), Unsigned(text), static_cast<int>(text.size()));
    return bytes;
}

}  // namespace

void BenchBase64(Report& report) {
    for (const std::size_t size : {44U, 91U, 4096U}) {
        const std::string bytes = Bytes(size);
        const std::string text = Encoded(bytes);
        const std::string suffix = std::to_string(size) + " B";
        report.Cpu(
            "Base64Decode " + suffix, AtMost(1.05), [=] { return userauth::Base64Decode(text); },
            [=] { return Decoded(text); });
        report.Cpu(
            "Base64UrlEncode " + suffix, AtMost(1.2),
            [=] { return userauth::Base64UrlEncode(Unsigned(bytes), static_cast<std::int32_t>(bytes.size())); },
            [=] { return Encoded(bytes); });
    }
}

}  // namespace bench
