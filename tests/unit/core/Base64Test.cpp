#include "core/Base64.h"

#include <gtest/gtest.h>
#include <openssl/bio.h>
#include <openssl/evp.h>

#include <map>
#include <memory>

namespace {

std::string UrlText(const std::string& bytes) {
    return userauth::Base64UrlEncode(reinterpret_cast<const unsigned char*>(bytes.data()),
                                     static_cast<std::int32_t>(bytes.size()));
}

// The authorization header's encoding by its definition: OpenSSL's filter over a memory sink.
std::string FilterText(const std::string& bytes) {
    const std::unique_ptr<BIO, decltype(&BIO_free_all)> filter(BIO_new(BIO_f_base64()), &BIO_free_all);
    BIO* const sink = BIO_push(filter.get(), BIO_new(BIO_s_mem()));
    BIO_set_flags(sink, BIO_FLAGS_BASE64_NO_NL);
    BIO_write(filter.get(), bytes.data(), static_cast<int>(bytes.size()));
    BIO_flush(filter.get());
    char* text = nullptr;
    const long length = BIO_get_mem_data(BIO_next(filter.get()), &text);
    return std::string(text, static_cast<std::size_t>(length));
}

}  // namespace

TEST(Base64, TheHeadersEncodingIsTheFilters) {
    std::string bytes;
    for (unsigned value = 1; bytes.size() < 2100; value = value * 1103515245 + 12345) {
        EXPECT_EQ(userauth::EncodeStandardBase64(bytes), FilterText(bytes)) << bytes.size();
        bytes += static_cast<char>(value >> 16);
    }
}

TEST(Base64, BothDirectionsAgreeWithTheStandard) {
    // RFC 4648, section 10.
    for (const auto& [bytes, text] : std::map<std::string, std::string>{{"", ""},
                                                                        {"f", "Zg=="},
                                                                        {"fo", "Zm8="},
                                                                        {"foo", "Zm9v"},
                                                                        {"foob", "Zm9vYg=="},
                                                                        {"fooba", "Zm9vYmE="},
                                                                        {"foobar", "Zm9vYmFy"}}) {
        EXPECT_EQ(UrlText(bytes), text);
        EXPECT_EQ(userauth::Base64Decode(text), bytes);
    }
    EXPECT_EQ(UrlText("\xFB\xEF\xBE\xFF"), "----_w==") << "the URL-safe alphabet goes out";
    EXPECT_EQ(userauth::Base64Decode("++++/w=="), "\xFB\xEF\xBE\xFF") << "the standard one comes in";
}

TEST(Base64, DecodingStopsAtTheFirstForeignCharacter) {
    for (const auto& [text, bytes] : std::map<std::string, std::string>{{"QUJD-QUJD", "ABC"},
                                                                        {"QUJDQ_UJD", "ABC"},
                                                                        {"QUJDQU JD", "ABCA"},
                                                                        {"QUI=QUJD", "AB"},
                                                                        {"Q", ""},
                                                                        {"QUJDR", "ABC"},
                                                                        {"\xE9QUJD", ""},
                                                                        {"QUJD\nQUJD", "ABC"},
                                                                        {std::string("QU\0JD", 5), "A"}}) {
        EXPECT_EQ(userauth::Base64Decode(text), bytes) << text;
    }
}
