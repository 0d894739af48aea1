#include <HttpLib.h>

#include <clocale>
#include <ctime>
#include <regex>
#include <stdexcept>
#include <thread>

#include "ServiceFixture.h"

namespace {

using SysConf = ServiceTest;
using Modules = std::vector<std::wstring>;

std::string AllSwitches(const std::string& value) {
    std::string members;
    for (const char* name :
         {"funcfg_recordings_up", "funcfg_drive", "funcfg_notes", "funcfg_contacts", "funcfg_gallery",
          "funcfg_manage_storage", "funcfg_find_my_phone_globe", "funcfg_pc_available", "other"}) {
        members += std::string(members.empty() ? "" : ",") + "\"" + name + "\":" + value;
    }
    return R"({"result":0,"userStatus":1,"params":{)" + members + "}}";
}

const Modules kAll = {L"Contacts", L"Drive", L"FindDevice", L"Gallery", L"ManageSpace", L"Notepad", L"Recorder"};

}  // namespace

TEST_F(SysConf, BasicServiceRequestsTellTheHttpLibraryInOrder) {
    m_service->SetCurrrentUserID(L"me");
    m_service->SetCurrentAT(L"at");
    UserAuthServiceAccess::Country(*m_service) = L"T\"H";
    const auto sent = [](const std::string& path, const std::string& operation, const std::string& body, bool sysConf) {
        const std::string hook = " UserAuthService::" + operation + "::<lambda_";
        const auto only = [](bool wanted, const Lines& lines) { return wanted ? lines : Lines(); };
        return Lines{"http SetUrl " + kBasicService + path, "http SetHttpRequestMethod 1", "http SetPostData " + body,
                     "http SetHeaders me 104862915 at",     "http SetCertPath ",           "http SetLogFunction "} +
               only(sysConf, {"http SetErrorLogFunction ", "http GetHeaders ", "http SetHeaders 2"}) +
               Lines{"http Request -1", "log 10 0" + hook + "1>::operator () progress text"} +
               only(sysConf, {"log 10 5" + hook + "2>::operator () error text"});
    };
    const std::string country = R"({"country": "T"H"})";
    const std::string description =
        "{\"isStored\":\"false\",\"opDesc\":\"service:client,action:dataInit,bus:a,b:\xC3\xA9\\\",result:ok\"}";
    const struct {
        std::function<void()> call;
        Lines sent;
    } rows[] = {
        {[this] { m_service->InitSysConf(); }, sent("sysConfInit", "GetSysConfigInfo", country, true)},
        {[this] { m_service->ActiveUser(); }, sent("sysConfRefresh", "ActiveUser", country, true)},
        {[this] { m_service->ReportLoginTime("a,b:\xC3\xA9\""); },
         sent("postOpDesc", "ReportLoginTime", description, false)},
        {[this] { m_service->RequestClientLogReport(); },
         sent("getUserRegister", "RequestClientLogReport", R"({"params": ["clientLogReport"]})", false)},
    };
    for (const auto& row : rows) {
        Recording().journal.clear();
        row.call();
        ASSERT_GE(Recording().journal.size(), row.sent.size());
        Recording().journal.resize(row.sent.size());
        EXPECT_EQ(Recording().journal, row.sent);
    }
    m_service->InitSysConf();
    EXPECT_EQ(Recording().requestHeaders, (Headers{{L"standard", L"set"}, {L"x-zv-active-method", L"manual"}}));
    Recording().standardHeaders = {{L"x-zv-active-method", L"kept"}};
    m_service->InitSysConf();
    EXPECT_EQ(Recording().requestHeaders, (Headers{{L"x-zv-active-method", L"kept"}}));
}

TEST_F(SysConf, OperationsHoldNoLockDuringAnExchangeAndLetNothingOut) {
    std::vector<DeviceTag> devices;
    const std::pair<std::function<bool()>, std::size_t> operations[] = {
        {[&] { return m_service->InitSysConf(); }, 3},
        {[&] { return m_service->ActiveUser(); }, 2},
        {[&] { return m_service->RequestClientLogReport(); }, 2},
        {[&] { return m_service->ReportLoginTime("b"), false; }, 2},
        {[&] { return m_service->GetLoginDevicesHistory(devices); }, 1},
        {[&] { return m_service->RequestAT("", "code"); }, 3},
        {[&] { return m_service->SetCurrentRT(L"rt"), m_service->GetAccessTokenByRefrshToken(); }, 2},
        {[&] { return m_service->ExportContracts(L"https://h/e", L"Z:\\absent\\file", {}); }, 1},
    };
    for (const auto& [operation, lines] : operations) {
        Recording().duringExchange = [&](const std::wstring&) {
            std::thread([&] { m_service->SetCurrentAT(L"new"); }).join();  // waits for ever when the lock is held
            Recording().journal.clear();
            throw std::runtime_error("the suite's library failed");
        };
        EXPECT_FALSE(operation());
        const Lines outcome = Recording().TakeOutcome();
        EXPECT_EQ(outcome.size(), lines) << "the lines of an exchange that did not take place";
        for (const std::string& line : outcome) {
            EXPECT_FALSE(std::regex_search(line, std::regex("ode: ?[1-9-]"))) << "no status came: " << line;
        }
    }
}

TEST_F(SysConf, InitSysConfReplacesWhatAnEarlierOneSaid) {
    const std::string on = AllSwitches("\"true\"");
    const Modules drive = {L"Drive"};
    const struct : ReplyRow {
        bool available, active;
        Modules modules;
    } rows[] = {
        {"nothing yet", 500, on, false, false, false, {}},
        {"all on", 200, on, true, true, true, kAll},
        {"no content", 204, AllSwitches("false"), false, true, true, kAll},
        {"accepted", 202, AllSwitches("false"), false, true, true, kAll},
        {"no exchange", kHttpTimeout, "", false, true, true, kAll},
        {"not JSON", 200, "{", false, true, true, kAll},
        {"plus sign", 200, R"({"a":+5})", false, true, true, kAll},
        {"a megabyte of digits", 200, "[0." + std::string(1024 * 1024, '7') + "]", false, true, true, kAll},
        {"trailing text is JSON to this reader", 201, "{} x", true, false, true, {}},
        {"booleans", 201, AllSwitches("true"), true, true, true, kAll},
        {"capitals", 200, AllSwitches("\"True\""), true, false, true, {}},
        {"mistyped", 200, AllSwitches("{\"true\":true}"), true, false, true, {}},
        {"refused, activation stays", 200, R"({"result":1,"userStatus":0,"params":{"funcfg_drive":"true"}})", true,
         false, true, drive},
        {"not active", 200, R"({"result":0,"userStatus":0,"params":[]})", true, false, false, {}},
        {"mistyped status", 200, R"({"result":0,"userStatus":"1","params":"true"})", true, false, false, {}},
        {"mistyped result", 200, R"({"result":"0","userStatus":1,"params":null})", true, false, false, {}},
        {"array", 200, "[1]", true, false, false, {}},
        {"number", 200, "7", true, false, false, {}},
        {"text", 200, "\"params\"", true, false, false, {}},
        {"deep", 200, std::string(100'000, '['), false, false, false, {}},
    };
    for (const auto& row : rows) {
        Outcome(row, &UserAuthService::InitSysConf);
        EXPECT_EQ(m_service->IsAvailableCountry(), row.available) << row.name;
        EXPECT_EQ(m_service->IsActiveAccount(), row.active) << row.name;
        EXPECT_EQ(m_service->GetValidModule(), row.modules) << row.name;
    }
}

TEST_F(SysConf, OperationsLog) {
    constexpr char kOperation[] = "GetSysConfigInfo";
    constexpr std::clock_t kTicks = 20;  // of a clock that counts milliseconds, whatever CLOCKS_PER_SEC says
    Recording().duringExchange = [](const std::wstring&) {
        for (const std::clock_t start = std::clock(); std::clock() - start < kTicks;) {
        }
    };
    Recording().replies = {{204, "", {}}, {503, "", {}}};
    ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "or the time below would prove nothing";
    m_service->InitSysConf();
    std::setlocale(LC_NUMERIC, "C");
    Lines outcome = Recording().TakeOutcome();
    ASSERT_EQ(outcome.size(), 3U);
    const std::string time = outcome.back();
    EXPECT_EQ(time.rfind("log 0 2 UserAuthService::GetSysConfigInfo --Request basic use time: ", 0), 0U) << time;
    ASSERT_EQ(time.find_last_not_of("0123456789"), time.size() - 7) << "six decimals: " << time;
    EXPECT_EQ(time[time.size() - 7], '.') << time;
    EXPECT_GE(std::stod(time.substr(time.rfind(' '))), 0.020) << time;
    outcome.pop_back();
    EXPECT_EQ(outcome, Log("2", kOperation, "GetSysConfigInfo httpcode:204") +
                           Log("0", kOperation, "SysConfInit\nUrl:" + kBasicService + "sysConfInit\nHttpCode:204"));
    m_service->ActiveUser();
    EXPECT_EQ(Recording().TakeOutcome(),
              Log("2", "ActiveUser", "ActiveUser httpcode:503") +
                  Log("0", "ActiveUser", "ActiveUser\nUrl:" + kBasicService + "sysConfRefresh\nHttpCode:503"));
}

TEST_F(SysConf, ActiveUserStoresWhatItIsTold) {
    const struct : ReplyRow {
        bool active;
    } rows[] = {
        {"refused", 403, R"({"result":0,"userStatus":1})", false, false},
        {"no status", 200, R"({"result":0})", false, false},
        {"activated", 201, R"({"result":0,"userStatus":1})", true, true},
        {"failed later", 200, R"({"result":7,"userStatus":0})", false, true},
        {"not JSON", 200, "", false, true},
        {"array", 200, "[]", false, true},
        {"no result", 200, R"({"userStatus":0})", false, true},
        {"status a fraction", 200, R"({"result":0,"userStatus":0.5})", false, true},
        {"result a fraction", 200, R"({"result":0.5,"userStatus":0})", false, true},
        {"status null", 200, R"({"result":0,"userStatus":null})", false, true},
        {"status false", 200, R"({"result":0,"userStatus":false,"params":{"funcfg_drive":"true"}})", false, true},
        {"taken back", 200, R"({"result":0,"userStatus":2})", true, false},
    };
    for (const auto& row : rows) {
        Outcome(row, &UserAuthService::ActiveUser);
        EXPECT_TRUE(m_service->GetValidModule().empty()) << row.name;
        EXPECT_EQ(m_service->IsActiveAccount(), row.active) << row.name;
    }
}
