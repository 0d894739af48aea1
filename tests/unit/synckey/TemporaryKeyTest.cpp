#include "synckey/TemporaryKey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

constexpr std::uint32_t kNoSuchContainer = 0x80090016;

// The scripted source: what its calls answer, and what was called.
struct {
    bool firstAcquired = false;
    bool secondAcquired = false;
    std::uint32_t error = 0;
    std::string calls;
} g_script;

const userauth::RandomSource kScripted = {
    [](std::uintptr_t& context, std::uint32_t flags) {
        g_script.calls += "acquire " + std::to_string(flags) + "; ";
        const bool acquired = flags == 0 ? g_script.firstAcquired : g_script.secondAcquired;
        context = acquired ? 7 : 0;
        return acquired;
    },
    [] { return g_script.error; },
    [](std::uintptr_t context, std::vector<unsigned char>& bytes) {
        g_script.calls += "generate " + std::to_string(bytes.size()) + " from " + std::to_string(context) + "; ";
        if (context != 0) {
            std::fill(bytes.begin(), bytes.end(), static_cast<unsigned char>(0xAB));
        }
    },
    [](std::uintptr_t context) { g_script.calls += "release " + std::to_string(context) + "; "; },
};

}  // namespace

TEST(DrawTemporaryKey, FollowsItsFallbacks) {
    const struct {
        const char* name;
        bool first;
        std::uint32_t error;
        bool second;
        const char* calls;
        unsigned char byte;
    } rows[] = {
        {"container there", true, 0, false, "acquire 0; generate 16 from 7; release 7; ", 0xAB},
        {"container made", false, kNoSuchContainer, true, "acquire 0; acquire 8; generate 16 from 7; release 7; ",
         0xAB},
        {"container not made", false, kNoSuchContainer, false, "acquire 0; acquire 8; ", 0},
        {"another failure", false, 5, true, "acquire 0; generate 16 from 0; release 0; ", 0},
    };
    for (const auto& row : rows) {
        g_script = {row.first, row.second, row.error, ""};
        EXPECT_EQ(userauth::DrawTemporaryKey(kScripted), std::vector<unsigned char>(16, row.byte)) << row.name;
        EXPECT_EQ(g_script.calls, row.calls) << row.name;
    }
}

TEST(DrawTemporaryKey, ThePlatformGivesAnotherKeyEachTime) {
    const std::vector<unsigned char> first = userauth::DrawTemporaryKey();
    EXPECT_EQ(first.size(), 16U);
    EXPECT_NE(first, std::vector<unsigned char>(16));
    EXPECT_NE(first, userauth::DrawTemporaryKey());
}
