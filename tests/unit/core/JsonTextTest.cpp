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

// Replies and files are read by the older reader, key lists and StringToJson by the newer one.
TEST(JsonText, TheTwoReadersDifferInTheseRules) {
    const std::string digits(1024, '1');
    const struct {
        const char* name;
        std::string text;
        bool byOlder, byNewer;
    } rows[] = {{"byte-order mark", "\xEF\xBB\xBF{}", false, true},
                {"trailing comma", "[1,]", false, true},
                {"plus sign", "[+1]", false, true},
                {"plus sign in an object", R"({"a":+5})", false, true},
                {"infinity", "[-Infinity]", false, false},
                {"minus sign alone", "[-]", true, true},
                {"comment", "/* c */{}", true, true},
                {"more behind it", "{}x", true, true},
                {"1,024 digits, again and again", "[0." + digits + ",0." + digits + "]", true, true},
                {"one digit more", "[" + digits + "1]", false, false},
                {"digits in a fraction", "[0." + digits + "1]", false, false},
                {"digits behind it", "[]" + digits + "1", false, false},
                {"digits in a string", R"(["\"/*)" + digits + digits + "\"]", true, true},
                {"behind a string that ends in a backslash", R"(["\\",0.)" + digits + "1]", false, false},
                {"digits in comments", "[/*\"" + digits + "1*/1//\"" + digits + "1\n]", true, true},
                {"behind a quote in a comment", "[/*\"*/0." + digits + "1]", false, false},
                {"behind a quote in a line's comment", "[//\"\r0." + digits + "1]", false, false},
                {"behind a comment that looks closed", "[/*/\"*/0." + digits + "1]", false, false}};
    for (const auto& row : rows) {
        Json::Value value;
        EXPECT_EQ(userauth::ParseDocument(row.text, value), row.byOlder) << row.name;
        EXPECT_EQ(userauth::ParseJsonText(row.text, value), row.byNewer) << row.name;
    }
    Json::Value value = 1;
    EXPECT_TRUE(userauth::ParseDocument("-Infinity", value)) << "the first sign is a number, the rest is ignored";
    EXPECT_EQ(value, Json::Value(0));
}

TEST(JsonText, DigitsAreCountedWhereverTheRunBegins) {
    Json::Value value;
    for (const std::size_t blanks : {0, 1, 511, 1020, 1021, 1022, 1023, 1024, 3000}) {
        const std::string text = std::string(blanks, ' ') + "[0." + std::string(1024, '1');
        EXPECT_TRUE(userauth::ParseDocument(text + "]", value)) << blanks;
        EXPECT_FALSE(userauth::ParseDocument(text + "1]", value)) << blanks;
    }
}

// The compact writer stands in for the styled one where it may.
TEST(JsonText, StyledTextIsTheLibrarys) {
    const std::string document = R"([null, true, 0, -7, 18446744073709551615, 3600.0, 0.1, -1e-9, 1e300, "", "0",
        "a\"\\/\b\f\n\r\tz", "\u00e9\u20ac\ud83d\ude00\u0000\u007f", ")"
                                 "\xC3\xA9\", \"\xE9\xFF"
                                 R"(", [], {}, [1, "a"], {"a":{"b":[]}},
        /* before */ 1, 2, // behind
        // before
        "a", [1] /* behind */, {"a":1 /* within */}])";
    Json::Value values;
    ASSERT_TRUE(userauth::ParseDocument(document, values));
    ASSERT_EQ(values.size(), 24U);
    for (const Json::Value& value : values) {
        EXPECT_EQ(userauth::WriteStyledText(value), value.toStyledString());
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
