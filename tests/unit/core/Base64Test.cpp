#include "core/Base64.h"

#include <gtest/gtest.h>

#include <map>

namespace {

std::string UrlText(const std::string& bytes) {
    return userauth::Base64UrlEncode(reinterpret_cast<const unsigned char*>(bytes.data()),
                                     static_cast<std::int32_t>(bytes.size()));
}

}  // namespace

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
