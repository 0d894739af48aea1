#include "crypto/Base64.h"

#include <algorithm>

#include "crypto/OpenSslTypes.h"

namespace sandbox {
namespace {

constexpr std::size_t kLongestText = 1024 * 1024;

std::size_t PaddingOf(const std::string& text) {
    const auto last = text.find_last_not_of('=');
    return last == std::string::npos ? text.size() : text.size() - last - 1;
}

}  // namespace

std::string Base64Encoded(const std::string& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // with the terminating zero
    const auto length = EVP_EncodeBlock(Octets(text.data()), Octets(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::optional<std::string> Base64Decoded(const std::string& text) {
    const auto padding = PaddingOf(text);
    if (text.size() % 4 != 0 || text.size() > kLongestText || padding > 2) {
        return std::nullopt;
    }
    std::string bytes(text.size() / 4 * 3, '\0');
    const auto length = EVP_DecodeBlock(Octets(bytes.data()), Octets(text.data()), static_cast<int>(text.size()));
    if (length != static_cast<int>(bytes.size())) {
        return std::nullopt;
    }
    bytes.resize(bytes.size() - padding);  // the library counts the padding as zero bytes
    // The library is lenient about blanks and about bits beyond the last byte.
    return Base64Encoded(bytes) == text ? std::optional<std::string>(std::move(bytes)) : std::nullopt;
}

std::optional<std::string> Base64UrlDecoded(std::string text) {
    if (text.find_first_of("+/") != std::string::npos) {
        return std::nullopt;
    }
    std::replace(text.begin(), text.end(), '-', '+');
    std::replace(text.begin(), text.end(), '_', '/');
    return Base64Decoded(text);
}

}  // namespace sandbox
