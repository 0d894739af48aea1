#include <EventAdminModule.h>
#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <new>

#include "FailingAllocations.h"
#include "FailingLibraries.h"
#include "LocalServer.h"

namespace {

namespace fs = std::filesystem;

const LocalServer& Server() {
    static const LocalServer* const server = new LocalServer({});
    return *server;
}

struct Row {
    const char* name;
    std::function<bool()> call;          // true: it says that it has done its work
    std::function<std::string()> state;  // what a reader sees; "" where there is nothing to see
    std::function<void()> restore = [] {};
    bool throws = false;
    Allocator allocator = Allocator::kNew;
};

class SuiteAllocations : public testing::Test {
protected:
    SuiteAllocations() { fs::create_directories(m_folder); }
    ~SuiteAllocations() override {
        Logger::Shutdown();
        fs::remove_all(m_folder);
    }

    int Get(bool withHeaders, const wchar_t* path = L"/a") {
        BasicHttpLibStrategy strategy;
        strategy.SetUrl(L"http://127.0.0.1:" + std::to_wstring(Server().port) + path +
                        L"?query=long-enough-for-the-heap");
        strategy.SetHeaders({{L"a-name", L"a value that is long enough for the heap"}});
        strategy.SetLogFunction([](const std::wstring&) {});
        std::string response;
        std::map<std::string, std::string> headers;
        const int code = withHeaders ? CurlHttpLibContext(&strategy).Request(response, headers)
                                     : CurlHttpLibContext(&strategy).Request(response, 10);
        const bool whole = response == LocalBody() && (!withHeaders || headers.size() == 2);
        EXPECT_TRUE(whole ? code == 200 : code < 0 && response.empty()) << code << " " << response;
        return code;
    }

    static int Findings() {
        return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    }

    void Try(const Row& row) {
        const int found = Findings();
        row.restore();
        const std::string before = row.state();
        EXPECT_TRUE(row.call()) << row.name << ", control";
        const std::string after = row.state();
        int failures = 0;
        for (const bool lasting : {false, true}) {
            int failed = 1;
            for (int number = 0; failed > 0 && Findings() == found; ++number) {
                SCOPED_TRACE(std::string(row.name) + ", allocation " + std::to_string(number) +
                             (lasting ? " and all that follow" : ""));
                row.restore();
                bool done = false;
                {
                    const FailingAllocations failing(row.allocator, number, lasting);
                    try {
                        done = row.call();
                    } catch (const std::bad_alloc&) {
                        EXPECT_TRUE(row.throws) << "an exception leaves it";
                    }
                    failed = failing.Failed();
                }
                failures += failed > 0 ? 1 : 0;
                const std::string now = row.state();
                EXPECT_TRUE(done ? now == after : now == before || now == after) << now;
            }
        }
        std::printf("%-34s %5d failed allocations\n", row.name, failures);
        EXPECT_TRUE(failures > 0 || row.allocator != Allocator::kLibcurl) << row.name << ", control: none was counted";
        m_failures += failures;
    }

    int m_failures = 0;
    const fs::path m_folder = fs::temp_directory_path() / ("suite-allocations-" + std::to_string(getpid()));
};

std::string Narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

}  // namespace

TEST_F(SuiteAllocations, MayFailInEveryCall) {
    GlobalParamWrapper& store = *GlobalParamWrapper::GetInstance();
    EventAdminModule& hub = *EventAdminModule::GetInstance();
    const std::wstring value = L"a new value that takes memory of its own";
    const std::wstring former = L"a former value that takes memory of its own";
    const std::string configuration = R"({"portalUrl":"https://portal.example.com/a-long-path","countryCode":"TH",
        "legacyItems":{"0":"an item that takes memory of its own"}})";
    LoggerSettings settings;
    settings.file = (m_folder / "client.log").wstring();
    std::string error;
    std::vector<EventAdminModule::SubscriptionId> subscribed;
    int heard = 0;
    const auto nothing = [] { return std::string(); };
    const auto setter = [&](const char* name, void (GlobalParamWrapper::*set)(const std::wstring&),
                            std::wstring (GlobalParamWrapper::*get)() const) {
        return Row{name, [&store, &value, set] { return (store.*set)(value), true; },
                   [&store, get] { return Narrow((store.*get)()); }, [&store, &former, set] { (store.*set)(former); },
                   true};
    };
    const Row rows[] = {
        setter("SetCurrentAt", &GlobalParamWrapper::SetCurrentAt, &GlobalParamWrapper::GetCurrentAt),
        setter("SetCurrentRt", &GlobalParamWrapper::SetCurrentRt, &GlobalParamWrapper::GetCurrentRt),
        setter("SetUserID", &GlobalParamWrapper::SetUserID, &GlobalParamWrapper::GetUserID),
        setter("SetAppAT", &GlobalParamWrapper::SetAppAT, &GlobalParamWrapper::GetAppAT),
        {"LoadConfigurationText", [&] { return store.LoadConfigurationText(configuration, error); },
         [&] {
             return Narrow(
                 store.GetPortalUrl() + store.GetCountryCode() +
                 ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken));
         },
         [&] { store.LoadConfigurationText(R"({"portalUrl":"https://p","countryCode":"","legacyItems":{}})", error); },
         true},
        {"LoadConfigurationText, refused",
         [&] { return !store.LoadConfigurationText(R"({"portalUrl":"ftp://x"})", error); },
         [&] { return Narrow(store.GetPortalUrl()); }, [] {}, true},
        {"getters",
         [&] { return !(store.GetPortalUrl() + store.GetSystemUUid() + store.GetAppDataLocalPath()).empty(); }, nothing,
         [] {}, true},
        {"Logger::Configure", [&] { return Logger::Configure(settings, error); }, nothing, [] { Logger::Shutdown(); }},
        {"Logger::Configure, refused",
         [&] {
             LoggerSettings folder;
             {
                 const Uncounted uncounted;
                 folder.file = m_folder.wstring();
             }
             return !Logger::Configure(folder, error);
         },
         nothing, [&] { std::string().swap(error); }},
        {"Logger::Output",
         [&] {
             std::wstring line;
             {
                 const Uncounted uncounted;
                 Logger::Configure(settings, error);
                 line = value + L" access_token=CANARY \\u0041";
             }
             static const std::string tag = "Class::Method, a long one";
             return Logger::Output(1, kSeverityFailure, 1, tag, line, true), true;
         },
         nothing},
        {"Logger::OutputOperationLog",
         [&] {
             static const std::map<std::wstring, std::wstring> extra = {{L"a long name of a value", value}};
             return Logger::OutputOperationLog(1, 2, 3, extra), true;
         },
         nothing},
        {"Logger::SetSecret",
         [&] {
             static const std::string name = "the long name of a secret of the test";
             return Logger::SetSecret(name, value);
         },
         nothing, [] { Logger::SetSecret("the long name of a secret of the test", L""); }},
        {"Logger::Flush", [] { return Logger::Flush(5000); }, nothing},
        {"Logger::Shutdown", [] { return Logger::Shutdown(), true; }, nothing},
        {"Subscribe",
         [&] {
             const auto id = hub.Subscribe(SuiteEvent::kSyncDriveKeyOk, [&heard](SuiteEvent) { ++heard; });
             const Uncounted uncounted;
             subscribed.assign(id == 0 ? 0 : 1, id);
             return id != 0;
         },
         [&] { return heard = 0, hub.SyncDriveKeyOk(), std::to_string(heard); },
         [&] {
             for (const auto id : subscribed) {
                 hub.Unsubscribe(id);
             }
             subscribed.clear();
         }},
        {"SyncDriveKeyOk", [&] { return hub.SyncDriveKeyOk(), true; }, nothing},
        {"Request", [&] { return Get(false) == 200; }, nothing, [] {}, true},
        {"Request with reply headers", [&] { return Get(true) == 200; }, nothing, [] {}, true},
        {"Request, libcurl's", [&] { return Get(true) == 200; }, nothing, [] {}, true, Allocator::kLibcurl},
        {"Request of chunks, libcurl's", [&] { return Get(true, L"/chunks") == 200; }, nothing, [] {}, true,
         Allocator::kLibcurl},
        {"Request that is moved, libcurl's", [&] { return Get(true, L"/moved") == 200; }, nothing, [] {}, true,
         Allocator::kLibcurl},
        {"SetDefaultCertPath", [&] { return CurlHttpLibContext::SetDefaultCertPath(value), true; }, nothing, [] {},
         true},
        {"SetExchangeObserver",
         [&] { return CurlHttpLibContext::SetExchangeObserver([&heard](const HttpExchange&) { ++heard; }), true; },
         nothing, [] {}, true},
    };
    Logger::Configure(settings, error);
    // Before the library starts it.
    ASSERT_TRUE(LetLibcurlFail());
    for (const Row& row : rows) {
        Try(row);
    }
    EXPECT_GT(m_failures, 0) << "control";
    CurlHttpLibContext::SetExchangeObserver(nullptr);
    EXPECT_EQ(Get(true), 200) << "after all that";
}
