#include <HttpLib.h>

#include "LegacyItem.h"
#include "ServiceFixture.h"

using GetOldVersionUserId = ServiceTest;

TEST_F(GetOldVersionUserId, TakesTheLegacySignInOver) {
    const std::string& stamp = kLegacyTimeStamp;
    std::string damaged = LegacyItem("old" + stamp);
    damaged[damaged.size() / 2] = damaged[damaged.size() / 2] == 'A' ? 'B' : 'A';
    // The ANSI code page takes a full-width letter for the letter.
    std::string fullWidth = LegacyItem("old" + stamp);
    fullWidth.replace(0, 1, Narrow(std::wstring(1, static_cast<wchar_t>(0xFEE0 + fullWidth[0]))));
    const std::string taken = std::string("old3\xC3\xA9") + "abcdefghijklmnopqrs";
    const ScriptedReply refreshed{200, R"({"result":{},"token":"at"})", {}};
    const struct {
        const char* name;
        std::string item;
        std::vector<ScriptedReply> replies;
        const wchar_t *userId, *refreshToken;
        std::size_t requests;
    } rows[] = {
        {"no item", "", {}, L"", L"", 0},
        {"not base64", "-", {}, L"", L"", 0},
        {"not a blob", "QUJD", {}, L"", L"", 0},
        {"damaged blob", damaged, {}, L"", L"", 0},
        {"full-width letters", fullWidth, {}, L"", L"", 0},
        {"a time stamp alone", LegacyItem(stamp), {}, L"", L"", 0},
        {"less than a time stamp", LegacyItem("x"), {}, L"", L"", 0},
        {"a zero byte ends it", LegacyItem(std::string("a\0", 2) + stamp), {}, L"", L"", 0},
        {"one byte more, no UTF-8", LegacyItem("\xFF" + stamp), {{401, "", {}}}, L"", L"\uFFFD", 1},
        {"refresh refused", LegacyItem("old1" + stamp), {{401, "", {}}}, L"", L"old1", 1},
        {"no user id", LegacyItem("old2" + stamp), {refreshed, {403, "", {}}}, L"", L"old2", 2},
        {"taken over", LegacyItem(taken), {refreshed, {200, R"({"uid":"42"})", {}}}, L"42", L"old3\u00E9", 2},
    };
    for (const auto& row : rows) {
        m_service->Clear();
        Recording().journal.clear();
        Recording().legacyItem = Wide(row.item);
        Recording().replies = row.replies;
        EXPECT_EQ(m_service->GetOldVersionUserId(), row.userId) << row.name;
        EXPECT_EQ(m_service->GetCurrentRT(), row.refreshToken) << row.name;
        EXPECT_EQ(Recording().Lines("http Request").size(), row.requests) << row.name;
        EXPECT_EQ(Recording().TakeOutcome().empty(), row.requests == 0) << row.name << ": no line, no push of its own";
    }
    EXPECT_EQ(m_service->GetCurrentAT(), L"at");
}
