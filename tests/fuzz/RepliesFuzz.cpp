// Replies through the real operations. An operation that fails leaves the account state and the store as they were,
// whatever came. One that left the state's lock held would be found by the fuzzer's time limit.

#include <HttpLib.h>

#include <atomic>
#include <thread>

#include "AccountFields.h"
#include "FuzzTarget.h"
#include "LegacyItem.h"
#include "ServiceFixture.h"
#include "UserSyncKeyService.h"

namespace {

// Made before any target asks for it; without an account SDK it would show a message box.
UserAuthService& g_service = []() -> UserAuthService& {
    const InstalledSdk sdk("scripted-sdk.dll");
    return Singleton();
}();

struct Operation {
    bool (*run)(UserAuthService& service);  // false as well for what never changes the state
    bool storesInParts = false;             // a 200 is stored as far as it goes, whatever the result
};

std::atomic<int> g_windowAsked = 0;

bool RequestUserInfo(UserAuthService& service) {
    g_windowAsked = 0;
    const bool done = service.RequestUserInfo();
    while (done && g_windowAsked == 0) {  // the last thing that a portrait download does
        std::this_thread::yield();
    }
    return done;
}

bool GetLoginDevicesHistory(UserAuthService& service) {
    std::vector<DeviceTag> devices(1);
    const bool done = service.GetLoginDevicesHistory(devices);
    Require(done || devices.size() == 1, "a failed history appended devices");
    return false;
}

bool ExportContracts(UserAuthService& service) {
    service.ExportContracts(L"https://contacts.example.com/export", L"/dev/null", {{L"name", L"value"}});
    return false;
}

bool GetRtqRemoteInfo(UserAuthService& service) {
    std::map<std::string, std::string> headers;
    service.GetRtqRemoteInfo(L"https://routing.example.com", headers);
    return false;
}

// The state in which every input finds the service: nothing in it is empty or false.
UserAuthService& Prepared() {
    static Fields prepared;
    UserAuthService& service = g_service;
    if (!prepared.empty() && AccountFields(service) == prepared) {
        return service;
    }
    UserAuthServiceAccess::Country(service) = L"TH";
    service.SetCurrentAT(L"at");
    service.SetCurrentRT(L"rt");
    service.SetCurrentUserInfo(L"me", L"name", L"https://photo.example.com", 1);
    service.SetCurrentUserHeadImageLocalPath(L"path");
    Recording().replies = {
        {200, R"({"result":{"code":"0"},"languageType":"th","privilege":true,"clientLogReport":true})", {}},
        {200, R"({"result":0,"userStatus":1,"params":{"funcfg_pc_available":true,"funcfg_notes":true}})", {}}};
    Require(service.UpdateRegistInfo() && service.InitSysConf(), "the state cannot be prepared");
    prepared = AccountFields(service);
    return service;
}

// The text of the input are the replies; the status is that of the last one.
template <std::size_t Count>
void RunOneOf(const Operation (&operations)[Count], FuzzInput input) {
    static constexpr int kStatuses[] = {200, 201, 204, 401, 500, kHttpConnectionBroken, 200, 200};
    static const std::string legacyItem = LegacyItem("legacy" + kLegacyTimeStamp);
    const Operation& operation = operations[input.Choice(Count)];
    const int status = kStatuses[input.Choice(std::size(kStatuses))];
    UserAuthService& service = Prepared();
    const Fields before = AccountFields(service);
    Recording() = SuiteRecording();
    Recording().appDataFolder = L"/dev/null/folder";
    Recording().legacyItem = Wide(legacyItem);
    Recording().onMainWindowAsked = [] { ++g_windowAsked; };
    for (const std::string& body : input.Parts()) {
        Recording().replies.push_back({200, body, {{"name", body}}});
    }
    Recording().replies.back().code = status;
    const bool done = operation.run(service);
    if (!done && !operation.storesInParts) {
        Require(AccountFields(service) == before, "a failed operation changed the state");
        Require(Recording().Lines("store").empty(), "a failed operation told the store");
    }
}

void Token(FuzzInput input) {
    static constexpr Operation kOperations[] = {
        {[](UserAuthService& service) { return service.RequestAT("", "code"); }, true},
        {[](UserAuthService& service) { return service.GetAccessTokenByRefrshToken(); }},
        {[](UserAuthService& service) { return service.RequestApplicationAT(); }},
        {[](UserAuthService& service) { return !service.GetOldVersionUserId().empty(); }, true}};
    RunOneOf(kOperations, std::move(input));
}

void Profile(FuzzInput input) {
    static constexpr Operation kOperations[] = {
        {[](UserAuthService& service) { return service.RequestUserID(); }},
        {[](UserAuthService& service) { return service.RequestUserIdFromSyncServer(); }},
        {RequestUserInfo},
        {[](UserAuthService& service) { return service.UpdateRegistInfo(); }}};
    RunOneOf(kOperations, std::move(input));
}

void SysConf(FuzzInput input) {
    static constexpr Operation kOperations[] = {
        {[](UserAuthService& service) { return service.InitSysConf(); }},
        {[](UserAuthService& service) { return service.ActiveUser(); }},
        {[](UserAuthService& service) { return service.RequestClientLogReport(); }},
        {[](UserAuthService& service) { return service.ReportLoginTime("business"), false; }},
        {GetLoginDevicesHistory}};
    RunOneOf(kOperations, std::move(input));
}

void Others(FuzzInput input) {
    static constexpr Operation kOperations[] = {
        {ExportContracts},
        {GetRtqRemoteInfo},
        {[](UserAuthService&) { return UserSyncKeyService().InitUserSyncKey(), false; }}};
    RunOneOf(kOperations, std::move(input));
}

const FuzzTarget kTargets[] = {{"replies-token", Token},
                               {"replies-profile", Profile},
                               {"replies-sysconf", SysConf},
                               {"replies-others", Others}};

}  // namespace
