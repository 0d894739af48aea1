#include "core/Base64.h"

#include <openssl/bio.h>
#include <openssl/evp.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

namespace userauth {
namespace {

constexpr std::string_view kStandardAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kUrlAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

constexpr int kBytesOfGroup = 3;
constexpr int kCharactersOfGroup = 4;
constexpr unsigned kSixBits = 0x3F;

// Appends the first bytes of a group, which lies in the low 24 bits.
void AppendBytes(std::string& out, unsigned group, int count) {
    for (int index = 0; index < count; ++index) {
        out += static_cast<char>((group >> (16 - 8 * index)) & 0xFFU);
    }
}

struct BioChainRelease {
    void operator()(BIO* chain) const { BIO_free_all(chain); }
};

}  // namespace

std::string EncodeStandardBase64(const std::string& bytes) {
    if (bytes.empty()) {
        return {};
    }
    const std::unique_ptr<BIO, BioChainRelease> filter(BIO_new(BIO_f_base64()));
    BIO* const sink = BIO_new(BIO_s_mem());
    if (filter == nullptr || sink == nullptr) {
        BIO_free(sink);
        throw std::bad_alloc();
    }
    BIO_set_flags(filter.get(), BIO_FLAGS_BASE64_NO_NL);
    BIO_push(filter.get(), sink);
    const int size = static_cast<int>(bytes.size());
    if (BIO_write(filter.get(), bytes.data(), size) != size || BIO_flush(filter.get()) != 1) {
        throw std::bad_alloc();
    }
    char* encoded = nullptr;
    const long length = BIO_get_mem_data(sink, &encoded);
    return std::string(encoded, static_cast<std::size_t>(length));
}

std::string Base64UrlEncode(const unsigned char* bytes, std::int32_t length) {
    std::string text;
    while (length > 0) {
        const int present = std::min<std::int32_t>(kBytesOfGroup, length);
        unsigned group = 0;
        for (int index = 0; index < kBytesOfGroup; ++index) {
            group = (group << 8) | (index < present ? bytes[index] : 0U);
        }
        for (int index = 0; index < kCharactersOfGroup; ++index) {
            text += index <= present ? kUrlAlphabet[(group >> (18 - 6 * index)) & kSixBits] : '=';
        }
        bytes += present;
        length -= present;
    }
    return text;
}

std::string Base64Decode(const std::string& text) {
    std::string bytes;
    unsigned group = 0;
    int characters = 0;
    for (const char character : text) {
        const std::size_t value = kStandardAlphabet.find(character);
        if (value == std::string_view::npos) {
            break;
        }
        group = (group << 6) | static_cast<unsigned>(value);
        if (++characters == kCharactersOfGroup) {
            AppendBytes(bytes, group, kBytesOfGroup);
            group = 0;
            characters = 0;
        }
    }
    if (characters > 0) {
        AppendBytes(bytes, group << (6 * (kCharactersOfGroup - characters)), characters - 1);
    }
    return bytes;
}

}  // namespace userauth
