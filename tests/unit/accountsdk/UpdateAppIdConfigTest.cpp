#include <optional>

#include "ServiceFixture.h"

using UpdateAppIdConfig = ServiceTest;

TEST_F(UpdateAppIdConfig, SetsOneMemberOrLeavesTheFile) {
    const std::filesystem::path path = ProgramFolder() / "ZMSCoreConfig.json";
    const struct {
        const char* name;
        std::optional<std::string> before;
        std::optional<std::string> after;
    } rows[] = {
        {"member missing", R"({"a":[1,2]})", "{\n   \"a\" : [ 1, 2 ],\n   \"client_id\" : \"104862915\"\n}\n"},
        {"member replaced", R"({"client_id":7})", "{\n   \"client_id\" : \"104862915\"\n}\n"},
        {"nothing but null", "null", "{\n   \"client_id\" : \"104862915\"\n}\n"},
        {"member that the writer would cut to the same name", R"({"client_id\u0000":7})",
         "{\n   \"client_id\" : \"104862915\"\n}\n"},
        {"no file", std::nullopt, std::nullopt},
        {"empty", "", ""},
        {"not JSON", "{\"a\":", "{\"a\":"},
        {"array", "[1]", "[1]"},
        {"nested too deep", std::string(5000, '['), std::string(5000, '[')},
    };
    for (const auto& row : rows) {
        std::filesystem::remove(path);
        if (row.before) {
            WriteFile(path, *row.before);
        }
        UserAuthServiceAccess::UpdateAppIdConfig(*m_service);
        EXPECT_EQ(std::filesystem::exists(path), row.after.has_value()) << row.name;
        EXPECT_EQ(ReadFile(path), row.after.value_or("")) << row.name;
    }
    std::filesystem::remove(path);
}
