#include <atomic>

#include "AccountFields.h"
#include "PortraitWindow.h"
#include "ServiceFixture.h"

namespace {

static_assert(kPortraitChangedMessage == 3207, "hosts have the number compiled in");

constexpr char kOperation[] = "RequestUserInfo";
const std::string kOldPortrait = "old portrait, longer than any below";
const std::string kLink = "\"profilePhotoLink\":\"https://p/\xC3\xA9\"";

class RequestUserInfo : public ServiceTest {
protected:
    RequestUserInfo() {
        Singleton().SetCurrentAT(L"singleton token");
        m_service->SetCurrentAT(L"own token");
        Recording().appDataFolder = (std::filesystem::temp_directory_path() /
                                     (L"userauth \u0E2D\u0416 " + std::to_wstring(GetCurrentProcessId())))
                                        .wstring();
        std::filesystem::create_directories(Recording().appDataFolder);
        LeaveAnOldPortrait();
    }
    ~RequestUserInfo() override {
        std::error_code ignored;
        std::filesystem::remove_all(Recording().appDataFolder, ignored);
    }

    static std::filesystem::path Portrait() {
        return std::filesystem::path(Recording().appDataFolder + L"\\HeadPortrait");
    }

    void LeaveAnOldPortrait() {
        WriteFile(Portrait(), kOldPortrait);
        m_service->SetCurrentUserHeadImageLocalPath(L"old path");
        Recording().journal.clear();
    }

    // Whether nobody has the portrait open.
    static bool IsClosed() {
        const HANDLE file =
            CreateFileW(Portrait().wstring().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
            return false;
        }
        CloseHandle(file);
        return true;
    }

    static std::string PortraitOnceClosed() {
        for (int tries = 0; tries < 1000 && !IsClosed(); ++tries) {
            Sleep(5);
        }
        return ReadFile(Portrait());
    }

    PortraitWindow m_window;
};

Lines Summary(const std::string& status) {
    return Log("0", kOperation,
               "RequestUserInfo\nUrl:https://user.example.com/KeCloudUserInformationService/v1/users"
               "?fields=userId,displayName,profilePhotoLink\nHttpCode:" +
                   status) +
           Lines{"event 251 5 0"};
}

}  // namespace

TEST_F(RequestUserInfo, Outcomes) {
    const Lines stored = Store("SetUserID", "\xD0\x96") + Store("SetUserID", "\xD0\x96") +
                         Log("2", kOperation, "GetUserInfo successed!");
    const std::string name = "\xE0\xB8\xAD\xF0\x9F\x98\x80";
    const std::string members = "\"userId\":\"\xD0\x96\",\"displayName\":\"" + name + "\",\"accountBrand\":-7";
    const struct : ReplyRow {
        int photoStatus;  // 0: no download
        std::wstring path;
        std::string file;
    } rows[] = {
        {"portrait", 200, "{" + members + "," + kLink + "}", true, 200, Portrait().wstring(), "bytes"},
        {"portrait not found", 200, "{" + members + "," + kLink + "}", true, 404, L"", ""},
        {"no portrait", 200, "{" + members + "}", true, 0, L"", kOldPortrait},
        {"server error", 500, "{" + members + "," + kLink + "}", false, 0, L"old path", kOldPortrait},
    };
    for (const auto& row : rows) {
        LeaveAnOldPortrait();
        Recording().replies = {{row.status, row.body, {}}, {row.photoStatus, "bytes", {}}};
        EXPECT_EQ(m_service->RequestUserInfo(), row.result) << row.name;
        EXPECT_EQ(m_window.Messages(row.result ? 1 : 0), row.result ? 1 : 0) << row.name;
        EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), row.path) << row.name;
        EXPECT_EQ(PortraitOnceClosed(), row.file) << row.name;
        const std::string status = std::to_string(row.status);
        Lines expected = Summary(status);
        if (!row.result) {
            expected = expected + Log("5", kOperation, "Error: GetUserInfo failed, httpcode = " + status);
        } else {
            if (row.photoStatus != 0) {
                expected = expected + Log("2", kOperation, "GetprofilePhotoLink start");
                EXPECT_EQ(Recording().url, L"https://p/\u00C3\u00A9") << "the download decodes the link as ANSI text";
                EXPECT_TRUE(Recording().requestHeaders.empty());
                EXPECT_EQ(m_service->GetCurrentUserHeadImageUrl(), L"https://p/\u00E9");
            }
            expected = expected + stored;
            EXPECT_EQ(m_service->GetCurrentUserName(), L"\u0E2D\U0001F600") << row.name;
            EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), -7) << row.name;
        }
        EXPECT_EQ(Recording().TakeOutcome(), expected) << row.name;
    }
    EXPECT_EQ(Recording().requestHeaders, (Headers{{L"Authorization", L"Bearer singleton token"}}));
}

TEST_F(RequestUserInfo, MissingAndMistypedMembersAreStoredEmpty) {
    for (const char* body : {"{}", "[]", R"({"userId":1,"displayName":{},"profilePhotoLink":[],"accountBrand":"7"})"}) {
        m_service->SetCurrentUserInfo(L"u", L"n", L"l", 9);
        Recording().replies = {{200, body, {}}};
        EXPECT_TRUE(m_service->RequestUserInfo()) << body;
        EXPECT_EQ(AccountFields(*m_service), (Fields{{"access token", L"own token"}})) << body;
    }
}

// A link to the old portrait keeps its bytes when the file is deleted first, and would lose them if it were only
// overwritten.
TEST_F(RequestUserInfo, TheOldPortraitIsDeletedAndTheMessageComesBeforeTheFileIsClosed) {
    const std::filesystem::path link = Portrait().wstring() + L".link";
    std::filesystem::create_hard_link(Portrait(), link);
    bool openAtMessage = false;
    std::wstring pathAtMessage;
    Recording().onMainWindowAsked = [&] {
        openAtMessage = !IsClosed();
        pathAtMessage = m_service->GetCurrentUserHeadImageLocalPath();
    };
    Recording().replies = {{200, "{" + kLink + "}", {}}, {200, "new", {}}};
    EXPECT_TRUE(m_service->RequestUserInfo());
    EXPECT_EQ(m_window.Messages(1), 1);
    EXPECT_TRUE(openAtMessage);
    EXPECT_EQ(pathAtMessage, Portrait().wstring()) << "who gets the message finds the path";
    EXPECT_EQ(PortraitOnceClosed(), "new");
    EXPECT_EQ(ReadFile(link), kOldPortrait);
}

TEST_F(RequestUserInfo, ASuiteThatThrowsInTheDownloadCountsAsAFailedOne) {
    Recording().onMainWindowAsked = [asked = 0]() mutable {
        if (++asked == 1) {
            throw 1;
        }
    };
    Recording().replies = {{200, "{" + kLink + "}", {}}, {200, "new", {}}};
    EXPECT_TRUE(m_service->RequestUserInfo());
    EXPECT_EQ(m_window.Messages(1), 1);
    EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), L"");
    EXPECT_EQ(PortraitOnceClosed(), "new");
}

TEST_F(RequestUserInfo, TwoDownloadsIntoOneFileAtOnceAreSurvived) {
    std::atomic<int> inside{0};
    Recording().duringExchange = [&](const std::wstring& url) {
        const ULONGLONG deadline = GetTickCount64() + 10000;
        if (url == L"https://p/\u00C3\u00A9") {
            ++inside;
            while (inside < 2 && GetTickCount64() < deadline) {
                Sleep(1);
            }
        }
    };
    Recording().repliesByUrl[L"https://p/\u00C3\u00A9"] = {200, std::string(100000, 'x'), {}};
    Recording().replies = {{200, "{" + kLink + "}", {}}, {200, "{" + kLink + "}", {}}};
    EXPECT_TRUE(m_service->RequestUserInfo());
    EXPECT_TRUE(m_service->RequestUserInfo());
    EXPECT_EQ(m_window.Messages(2), 2);
    EXPECT_EQ(inside, 2);
    EXPECT_EQ(PortraitOnceClosed().size(), 100000U);
}

TEST_F(RequestUserInfo, WithoutAWindowNothingIsPosted) {
    Recording().mainWindow = nullptr;
    Recording().replies = {{200, "{}", {}}};
    EXPECT_TRUE(m_service->RequestUserInfo());
    MSG message{};
    EXPECT_FALSE(PeekMessageW(&message, nullptr, kPortraitChangedMessage, kPortraitChangedMessage, PM_REMOVE));
}
