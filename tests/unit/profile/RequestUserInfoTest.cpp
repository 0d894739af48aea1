#include <chrono>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

#include "ServiceFixture.h"

namespace {

using Lines = std::vector<std::string>;
constexpr UINT kPortraitChanged = 0x0C87;

const std::string kTag = " UserAuthService::RequestUserInfo ";
const std::string kLink = "\"profilePhotoLink\":\"https://p/\xC3\xA9\"";

class RequestUserInfoTest : public ServiceTest {
protected:
    RequestUserInfoTest()
        : m_window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
        Recording().mainWindow = m_window;
        Recording().appDataFolder = (std::filesystem::temp_directory_path() / L"userauth \u0E2D\u0416").wstring();
        std::filesystem::create_directories(Recording().appDataFolder);
        std::ofstream(Portrait(), std::ios::binary) << "old portrait, longer than any below";
        m_service->SetCurrentUserHeadImageLocalPath(L"old path");
        Recording().journal.clear();
    }
    ~RequestUserInfoTest() override { DestroyWindow(m_window); }

    static std::filesystem::path Portrait() {
        return std::filesystem::path(Recording().appDataFolder) / "HeadPortrait";
    }

    // Messages that arrived until the wanted number is there, and 50 ms more to see one too many.
    int Messages(int wanted) {
        int count = 0;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(wanted == 0 ? 0 : 10);
        MSG message{};
        while (std::chrono::steady_clock::now() < deadline) {
            while (PeekMessageW(&message, m_window, kPortraitChanged, kPortraitChanged, PM_REMOVE) != FALSE) {
                EXPECT_EQ(message.wParam, 0U);
                EXPECT_EQ(message.lParam, 0);
                if (++count == wanted) {
                    deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
                }
            }
            Sleep(1);
        }
        return count;
    }

    HWND m_window;
};

Lines Summary(const std::string& status) {
    return {"log 10 0" + kTag +
                "RequestUserInfo\nUrl:https://user.example.com/KeCloudUserInformationService/v1/users"
                "?fields=userId,displayName,profilePhotoLink\nHttpCode:" +
                status,
            "event 251 5 0"};
}

}  // namespace

TEST_F(RequestUserInfoTest, Outcomes) {
    const Lines stored = {"store SetUserID \xD0\x96", "store SetUserID \xD0\x96",
                          "log 10 2" + kTag + "GetUserInfo successed!"};
    const std::string name = "\xE0\xB8\xAD\xF0\x9F\x98\x80";
    const std::string members = "\"userId\":\"\xD0\x96\",\"displayName\":\"" + name + "\",\"accountBrand\":-7";
    const struct {
        const char* name;
        int status;
        std::string body;
        int photoStatus;  // 0: no download
        bool result;
        int messages;
        std::wstring path;
        std::string file;
    } rows[] = {
        {"portrait", 200, "{" + members + "," + kLink + "}", 200, true, 1, Portrait().wstring(), "bytes"},
        {"portrait not found", 200, "{" + members + "," + kLink + "}", 404, true, 1, L"", ""},
        {"no portrait", 200, "{" + members + "}", 0, true, 1, L"", "old portrait, longer than any below"},
        {"server error", 500, "{" + members + "," + kLink + "}", 0, false, 0, L"old path",
         "old portrait, longer than any below"},
    };
    for (const auto& row : rows) {
        std::ofstream(Portrait(), std::ios::binary) << "old portrait, longer than any below";
        m_service->SetCurrentUserHeadImageLocalPath(L"old path");
        Recording().journal.clear();
        Recording().replies = {{row.status, row.body, {}}, {row.photoStatus, "bytes", {}}};
        EXPECT_EQ(m_service->RequestUserInfo(), row.result) << row.name;
        EXPECT_EQ(Messages(row.messages), row.messages) << row.name;
        EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), row.path) << row.name;
        std::ifstream file(Portrait(), std::ios::binary);
        EXPECT_EQ((std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}), row.file)
            << row.name;
        const std::string status = std::to_string(row.status);
        Lines expected = Summary(status);
        if (!row.result) {
            expected.push_back("log 10 5" + kTag + "Error: GetUserInfo failed, httpcode = " + status);
        } else {
            if (row.photoStatus != 0) {
                expected.push_back("log 10 2" + kTag + "GetprofilePhotoLink start");
                EXPECT_EQ(Recording().url, L"https://p/\u00C3\u00A9") << "the download decodes the link as ANSI text";
                EXPECT_TRUE(Recording().requestHeaders.empty());
                EXPECT_EQ(m_service->GetCurrentUserHeadImageUrl(), L"https://p/\u00E9");
            }
            expected.insert(expected.end(), stored.begin(), stored.end());
            EXPECT_EQ(m_service->GetCurrentUserName(), L"\u0E2D\U0001F600") << row.name;
            EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), -7) << row.name;
        }
        EXPECT_EQ(Recording().TakeOutcome(), expected) << row.name;
    }
}

TEST_F(RequestUserInfoTest, MissingAndMistypedMembersAreStoredEmpty) {
    for (const char* body : {"{}", "[]", R"({"userId":1,"displayName":{},"profilePhotoLink":[],"accountBrand":"7"})"}) {
        m_service->SetCurrentUserInfo(L"u", L"n", L"l", 9);
        Recording().replies = {{200, body, {}}};
        EXPECT_TRUE(m_service->RequestUserInfo()) << body;
        EXPECT_EQ(m_service->GetCurrentUserID() + m_service->GetCurrentUserName() +
                      m_service->GetCurrentUserHeadImageUrl() + m_service->GetCurrentUserHeadImageLocalPath(),
                  L"")
            << body;
        EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), 0) << body;
    }
}

TEST_F(RequestUserInfoTest, TwoDownloadsAtOnceAndNoWindowAreSurvived) {
    Recording().mainWindow = nullptr;
    const ScriptedReply profile = {200, "{" + kLink + "}", {}};
    for (int round = 0; round < 20; ++round) {
        Recording().replies = {profile};
        EXPECT_TRUE(m_service->RequestUserInfo());
    }
    Recording().mainWindow = m_window;
    Recording().replies = {profile};
    EXPECT_TRUE(m_service->RequestUserInfo());
    EXPECT_GE(Messages(1), 1);
    Sleep(200);
}
