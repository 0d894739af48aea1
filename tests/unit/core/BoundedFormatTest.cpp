#include "core/BoundedFormat.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

using userauth::FormatString;
using userauth::FormatWide;
using userauth::kWideFormatCapacity;

namespace {

int g_raised = 0;

class BoundedFormat : public testing::Test {
protected:
    BoundedFormat() : m_former(_set_invalid_parameter_handler(CountRaise)) { g_raised = 0; }
    ~BoundedFormat() override { _set_invalid_parameter_handler(m_former); }

    static void CountRaise(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) { ++g_raised; }

private:
    _invalid_parameter_handler m_former;
};

}  // namespace

TEST_F(BoundedFormat, WritesWhatFitsWithItsTerminator) {
    char buffer[8] = {};
    EXPECT_EQ(FormatString(buffer, sizeof(buffer), "%s", "1234567"), 7);
    EXPECT_STREQ(buffer, "1234567");
    EXPECT_EQ(FormatString(buffer, sizeof(buffer), "%02x", 0x0F), 2);
    EXPECT_STREQ(buffer, "0f");
    EXPECT_EQ(FormatString(buffer, sizeof(buffer), "%d.%02d", 3, 7), 4);
    EXPECT_STREQ(buffer, "3.07");
    EXPECT_EQ(g_raised, 0);
}

TEST_F(BoundedFormat, OneCharacterTooManyEmptiesTheBufferAndRaises) {
    char buffer[9] = {};
    buffer[8] = '#';
    EXPECT_EQ(FormatString(buffer, 8, "%s", "12345678"), -1);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(buffer[8], '#');
    EXPECT_EQ(g_raised, 1);
}

TEST_F(BoundedFormat, WideTextHasTheSameBound) {
    wchar_t buffer[kWideFormatCapacity] = {};
    const std::wstring longest(kWideFormatCapacity - 1, L'x');
    EXPECT_EQ(FormatWide(buffer, longest.c_str()), 255);
    EXPECT_EQ(buffer, longest);
    EXPECT_EQ(g_raised, 0);
    EXPECT_EQ(FormatWide(buffer, (longest + L"x").c_str()), -1);
    EXPECT_STREQ(buffer, L"");
    EXPECT_EQ(g_raised, 1);
    EXPECT_EQ(FormatWide(buffer, L"dwError = %d \r\n", 126), 16);
    EXPECT_STREQ(buffer, L"dwError = 126 \r\n");
}

TEST_F(BoundedFormat, NullArgumentsRaise) {
    char buffer[4] = "abc";
    EXPECT_EQ(FormatString(nullptr, 4, "%s", "x"), -1);
    EXPECT_EQ(FormatString(buffer, 0, "%s", "x"), -1);
    const char* const noFormat = nullptr;
    EXPECT_EQ(userauth::FormatString(buffer, sizeof(buffer), noFormat), -1);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(g_raised, 3);
}

TEST_F(BoundedFormat, WithoutAHandlerTheProcessEnds) {
    constexpr int kLowByteOfInvalidParameterStatus = 0x17;
    EXPECT_EXIT(
        {
            _set_invalid_parameter_handler(nullptr);
            char buffer[2] = {};
            FormatString(buffer, sizeof(buffer), "%s", "too long");
        },
        [](int status) { return (status & 0xFF) == kLowByteOfInvalidParameterStatus; }, "");
}
