#include "request/Reply.h"

#include <gtest/gtest.h>

using userauth::Reply;

TEST(Reply, WrongTypesReadAsEmptyOrZero) {
    const struct {
        const char *name, *text, *textMember;
        int integerMember;
        const char* styledCode;
    } rows[] = {
        {"as promised", R"({"t":"x","i":7,"o":{"code":"0"}})", "x", 7, "\"0\"\n"},
        {"number as code", R"({"o":{"code":0}})", "", 0, "0\n"},
        {"comment", "{/* c */\"t\":\"x\"}", "x", 0, "null\n"},
        {"integral real", R"({"i":7.0})", "", 7, "null\n"},
        {"swapped types", R"({"t":1,"i":"7","o":"code"})", "", 0, "null\n"},
        {"null members", R"({"t":null,"i":null,"o":null})", "", 0, "null\n"},
        {"booleans", R"({"t":true,"i":true,"o":true})", "", 0, "null\n"},
        {"containers", R"({"t":{},"i":[],"o":[{"code":"0"}]})", "", 0, "null\n"},
        {"beyond 32 bits", R"({"i":2147483648})", "", 0, "null\n"},
        {"beyond 64 bits", R"({"i":1e300})", "", 0, "null\n"},
        {"fraction", R"({"i":7.5})", "", 0, "null\n"},
        {"array at the root", R"([{"t":"x"}])", "", 0, "null\n"},
        {"text at the root", R"("t")", "", 0, "null\n"},
        {"number at the root", "7", "", 0, "null\n"},
        {"empty", "", "", 0, "null\n"},
        {"cut in the middle", R"({"t":"x","i":7,"o":{"co)", "", 0, "null\n"},
        {"not JSON", "<html>", "", 0, "null\n"},
        {"half a surrogate pair", R"({"t":"\ud800","i":7})", "", 0, "null\n"},
    };
    for (const auto& row : rows) {
        const Reply reply(row.text);
        EXPECT_EQ(reply.Text("t"), row.textMember) << row.name;
        EXPECT_EQ(reply.Integer("i"), row.integerMember) << row.name;
        EXPECT_EQ(reply.Member("o").StyledText("code"), row.styledCode) << row.name;
        EXPECT_EQ(reply.Member("o").Member("deeper").Text("x"), "") << row.name;
    }
}

TEST(Reply, ConvertedFormsFollowTheJsonLibrary) {
    const struct {
        const char *value, *text;
        std::optional<int> integer;
        bool isOne;
    } rows[] = {
        {"1", "1", 1, true},
        {"1.0", "1.0", 1, false},
        {"\"1\"", "1", std::nullopt, false},
        {"true", "true", 1, false},
        {"null", "", 0, false},
        {"-0.9", "-0.90000000000000002", 0, false},
        {"[1]", "", std::nullopt, false},
        {"{}", "", std::nullopt, false},
        {"2147483648", "2147483648", std::nullopt, false},
        {"-2147483648.5", "-2147483648.5", std::nullopt, false},
    };
    for (const auto& row : rows) {
        const userauth::Reply reply(std::string("{\"m\":") + row.value + "}");
        EXPECT_EQ(reply.ConvertedText("m"), row.text) << row.value;
        EXPECT_EQ(reply.ConvertedInteger("m"), row.integer) << row.value;
        EXPECT_EQ(reply.Equals("m", 1), row.isOne) << row.value;
        EXPECT_TRUE(reply.Has("m"));
    }
    for (const char* root : {"[[1]]", "7", "\"m\"", "oops", "{}"}) {
        const userauth::Reply reply(root);
        EXPECT_FALSE(reply.Has("m")) << root;
        EXPECT_FALSE(reply.HasInteger("m")) << root;
        EXPECT_FALSE(reply.Equals("m", 0)) << root;
        EXPECT_EQ(reply.ConvertedText("m"), "") << root;
        EXPECT_TRUE(reply.MemberNames().empty()) << root;
        EXPECT_TRUE(reply.Elements("m").empty()) << root;
    }
}
