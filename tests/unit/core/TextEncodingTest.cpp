#include "core/TextEncoding.h"

#include <gtest/gtest.h>
#include <windows.h>

using userauth::kAnsiCodePage;
using userauth::kUtf8CodePage;
using userauth::MultiByteToWide;
using userauth::UrlEncode;
using userauth::WideToMultiByte;

// The rows below hold for the Western code page; with another one they would prove nothing.
TEST(TextEncoding, RunsOnTheWesternCodePage) { ASSERT_EQ(GetACP(), 1252U); }

TEST(TextEncoding, EachCodePageDecodesItsOwnBytes) {
    const std::string eAcuteInUtf8 = "\xC3\xA9";
    EXPECT_EQ(MultiByteToWide(eAcuteInUtf8, kUtf8CodePage), L"\u00E9");
    EXPECT_EQ(MultiByteToWide(eAcuteInUtf8, kAnsiCodePage), L"\u00C3\u00A9");
    EXPECT_EQ(WideToMultiByte(L"\u00E9", kUtf8CodePage), eAcuteInUtf8);
    EXPECT_EQ(WideToMultiByte(L"\u00E9", kAnsiCodePage), "\xE9");
    EXPECT_EQ(WideToMultiByte(L"\U0001F600", kUtf8CodePage), "\xF0\x9F\x98\x80");
    EXPECT_EQ(MultiByteToWide("\xFFx", kUtf8CodePage), L"\uFFFDx") << "replaced, not refused";
    EXPECT_EQ(WideToMultiByte(L"\uFF21\u0E2A", kAnsiCodePage), "A?");
    const std::string text("a\0b", 3);
    EXPECT_EQ(MultiByteToWide(text, kUtf8CodePage), std::wstring(L"a\0b", 3));
    EXPECT_EQ(WideToMultiByte(std::wstring(L"a\0b", 3), kAnsiCodePage), text);
}

TEST(TextEncoding, FailureLeavesTheOutputAsItWas) {
    std::wstring wide = L"old";
    std::string text = "old";
    EXPECT_FALSE(MultiByteToWide("", wide, kUtf8CodePage));
    EXPECT_FALSE(WideToMultiByte(L"", text, kUtf8CodePage));
    constexpr unsigned kNoSuchCodePage = 12345;
    EXPECT_FALSE(MultiByteToWide("x", wide, kNoSuchCodePage));
    EXPECT_FALSE(WideToMultiByte(L"x", text, kNoSuchCodePage));
    EXPECT_EQ(wide, L"old");
    EXPECT_EQ(text, "old");
    EXPECT_TRUE(MultiByteToWide("new", wide, kUtf8CodePage));
    EXPECT_EQ(wide, L"new");
}

TEST(TextEncoding, UrlEncodeEscapesAnsiBytes) {
    const struct {
        const wchar_t *text, *encoded;
    } rows[] = {
        {L"a b", L"a+b"},
        {L"a/b?c=d&e", L"a%2Fb%3Fc%3Dd%26e"},
        {L"A-Z_.~", L"A-Z_.~"},
        {L"azAZ09", L"azAZ09"},
        {L"+%\x1F\x7F", L"%2B%25%1F%7F"},
        {L"\u00E9\u20AC", L"%E9%80"},  // one byte each in the ANSI code page, not the UTF-8 sequences
        {L"\u0E2A", L"%3F"},
        {L"", L""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(UrlEncode(row.text), row.encoded);
    }
}
