#include "core/JsonText.h"

#include <json/value.h>

#include "ServiceFixture.h"

using StringToJson = ServiceTest;

TEST(JsonText, OnlyArraysAndObjectsAreDocuments) {
    const struct {
        const char* text;
        bool accepted;
    } rows[] = {{"[]", true},     {"{}", true},    {" {\"a\":1} ", true}, {"", false},       {"1", false},
                {"\"a\"", false}, {"true", false}, {"null", false},       {"{\"a\":", false}};
    for (const auto& row : rows) {
        Json::Value value;
        EXPECT_EQ(userauth::ParseJsonText(row.text, value), row.accepted) << row.text;
    }
}

// Replies keep the rules of the reader that they were written for; other texts have the library's default ones.
TEST(JsonText, TheTwoReadersDifferInTwoRules) {
    const struct {
        const char* name;
        const char* text;
        bool reply;
    } rows[] = {{"byte-order mark", "\xEF\xBB\xBF{}", false},
                {"trailing comma", "[1,]", false},
                {"comment", "/* c */{}", true},
                {"more behind it", "{}x", true}};
    for (const auto& row : rows) {
        Json::Value value;
        EXPECT_TRUE(userauth::ParseJsonText(row.text, value)) << row.name;
        EXPECT_EQ(userauth::ParseDocument(row.text, value), row.reply) << row.name;
    }
}

TEST(JsonText, DeepNestingIsAFailedParse) {
    for (const char* opening : {"[", "{\"a\":"}) {
        std::string bomb;
        while (bomb.size() < 10 * 1024 * 1024) {
            bomb += opening;
        }
        Json::Value value = 1;
        EXPECT_FALSE(userauth::ParseJsonText(bomb, value));
        EXPECT_FALSE(userauth::ParseDocument(bomb, value));
        EXPECT_TRUE(value.isNull());
        EXPECT_NO_THROW(userauth::ParseLeniently(bomb));
    }
}

TEST_F(StringToJson, YieldsWhatTheReaderLeft) {
    EXPECT_TRUE(UserAuthServiceAccess::Parse(*m_service, "garbage").isNull());
    EXPECT_EQ(UserAuthServiceAccess::Parse(*m_service, "{\"a\":1}")["a"].asInt(), 1);
    EXPECT_EQ(UserAuthServiceAccess::Parse(*m_service, "{\"a\":1,\"b\":").get("a", 0).asInt(), 1);
}
