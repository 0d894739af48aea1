#include <HttpLib.h>
#include <windows.h>
// wincrypt.h comes after windows.h, and dpapi.h after that.
#include <wincrypt.h>
// clang-format off
#include <dpapi.h>
// clang-format on

#include "ServiceFixture.h"
#include "request/StandardBase64.h"

using GetOldVersionUserId = ServiceTest;

namespace {

constexpr char kStamp[] = "2019-03-04 05:06:07";

std::wstring LegacyItem(std::string plaintext) {
    DATA_BLOB input{static_cast<DWORD>(plaintext.size()), reinterpret_cast<BYTE*>(plaintext.data())};
    DATA_BLOB output{};
    EXPECT_TRUE(CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output));
    const std::string text =
        userauth::EncodeStandardBase64({reinterpret_cast<const char*>(output.pbData), output.cbData});
    LocalFree(output.pbData);
    return {text.begin(), text.end()};
}

}  // namespace

TEST_F(GetOldVersionUserId, TakesTheLegacySignInOver) {
    std::wstring damaged = LegacyItem(std::string("old") + kStamp);
    damaged[damaged.size() / 2] = damaged[damaged.size() / 2] == L'A' ? L'B' : L'A';
    const std::string taken = std::string("old3\xC3\xA9") + "abcdefghijklmnopqrs";
    const ScriptedReply refreshed{200, R"({"result":{},"token":"at"})", {}};
    const struct {
        const char* name;
        std::wstring item;
        std::vector<ScriptedReply> replies;
        const wchar_t *userId, *refreshToken;
        std::size_t requests;
    } rows[] = {
        {"no item", L"", {}, L"", L"", 0},
        {"not base64", L"-", {}, L"", L"", 0},
        {"not a blob", L"QUJD", {}, L"", L"", 0},
        {"damaged blob", damaged, {}, L"", L"", 0},
        {"a time stamp alone", LegacyItem(kStamp), {}, L"", L"", 0},
        {"less than a time stamp", LegacyItem("x"), {}, L"", L"", 0},
        {"a zero byte ends it", LegacyItem(std::string("a\0", 2) + kStamp), {}, L"", L"", 0},
        {"one byte more, no UTF-8", LegacyItem(std::string("\xFF") + kStamp), {{401, "", {}}}, L"", L"\uFFFD", 1},
        {"refresh refused", LegacyItem(std::string("old1") + kStamp), {{401, "", {}}}, L"", L"old1", 1},
        {"no user id", LegacyItem(std::string("old2") + kStamp), {refreshed, {403, "", {}}}, L"", L"old2", 2},
        {"taken over", LegacyItem(taken), {refreshed, {200, R"({"uid":"42"})", {}}}, L"42", L"old3\u00E9", 2},
    };
    for (const auto& row : rows) {
        m_service->Clear();
        Recording().journal.clear();
        Recording().legacyItem = row.item;
        Recording().replies = row.replies;
        EXPECT_EQ(m_service->GetOldVersionUserId(), row.userId) << row.name;
        EXPECT_EQ(m_service->GetCurrentRT(), row.refreshToken) << row.name;
        EXPECT_EQ(Recording().Lines("http Request").size(), row.requests) << row.name;
        EXPECT_EQ(Recording().TakeOutcome().empty(), row.requests == 0) << row.name << ": no line, no push of its own";
    }
    EXPECT_EQ(m_service->GetCurrentAT(), L"at");
}
