// Replies through the real operations: one that fails leaves the account state and the store as they were. One that
// left the state's lock held would be found by the fuzzer's time limit.

#include <HttpLib.h>
#include <semaphore.h>

#include "AccountFields.h"
#include "FuzzTarget.h"
#include "LegacyItem.h"
#include "ServiceFixture.h"
#include "UserSyncKeyService.h"

namespace {

// Made before any target asks for it; without an account SDK it would show a message box.
UserAuthService& g_service = []() -> UserAuthService& {
    const InstalledSdk sdk("scripted-sdk.dll");
    // A reply that is too long ends the process of a client that has no handler.
    _set_invalid_parameter_handler([](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {});
    return Singleton();
}();

sem_t g_windowAsked;
[[maybe_unused]] const int g_windowAskedMade = sem_init(&g_windowAsked, 0, 0);

bool RequestUserInfo(UserAuthService& service) {
    if (!service.RequestUserInfo()) {
        return false;
    }
    // Asking for the window is the last thing that a portrait download does.
    while (sem_wait(&g_windowAsked) != 0) {  // a signal came
    }
    return true;
}

bool GetLoginDevicesHistory(UserAuthService& service) {
    std::vector<DeviceTag> devices(1);
    const bool done = service.GetLoginDevicesHistory(devices);
    Require(done || devices.size() == 1, "a failed history appended devices");
    return false;
}

bool GetRtqRemoteInfo(UserAuthService& service) {
    std::map<std::string, std::string> headers;
    return service.GetRtqRemoteInfo(L"https://routing.example.com", headers), false;
}

using S = UserAuthService;
constexpr struct {
    bool (*run)(S& service);     // false as well for what never changes the state
    bool storesInParts = false;  // a 200 is stored as far as it goes, whatever the result
} kOperations[] = {
    {[](S& s) { return s.RequestAT("", "code"); }, true},
    {[](S& s) { return s.GetAccessTokenByRefrshToken(); }},
    {[](S& s) { return s.RequestApplicationAT(); }},
    {[](S& s) { return !s.GetOldVersionUserId().empty(); }, true},
    {[](S& s) { return s.RequestUserID(); }},
    {[](S& s) { return s.RequestUserIdFromSyncServer(); }},
    {RequestUserInfo},
    {[](S& s) { return s.UpdateRegistInfo(); }},
    {[](S& s) { return s.InitSysConf(); }},
    {[](S& s) { return s.ActiveUser(); }},
    {[](S& s) { return s.RequestClientLogReport(); }},
    {[](S& s) { return s.ReportLoginTime("business"), false; }},
    {GetLoginDevicesHistory},
    {[](S& s) {
        return s.ExportContracts(L"https://a.example.com", L"/dev/null", {{L"name", L"value"}}), false;
    }},
    {GetRtqRemoteInfo},
    {[](S&) { return UserSyncKeyService().InitUserSyncKey(), false; }},
};

// The state in which every input finds the service; nothing in it is empty or false.
const Fields& Prepare() {
    static Fields prepared;
    if (!prepared.empty() && AccountFields(g_service) == prepared) {
        return prepared;
    }
    g_service.SetAtExpireCallback([] {});
    UserAuthServiceAccess::Country(g_service) = L"TH";
    g_service.SetCurrentAT(L"at");
    g_service.SetCurrentRT(L"rt");
    g_service.SetCurrentUserInfo(L"me", L"name", L"https://photo.example.com", 1);
    g_service.SetCurrentUserHeadImageLocalPath(L"path");
    Recording().replies = {
        {200, R"({"result":{"code":"0"},"languageType":"th","privilege":true,"clientLogReport":true})", {}},
        {200, R"({"result":0,"userStatus":1,"params":{"funcfg_pc_available":true,"funcfg_notes":true}})", {}}};
    Require(g_service.UpdateRegistInfo() && g_service.InitSysConf(), "the state cannot be prepared");
    return prepared = AccountFields(g_service);
}

// The text of the input are the replies; the status is that of the last one. "#" is more than a reply may hold.
void Replies(FuzzInput input) {
    static constexpr int kStatuses[] = {200, 201, 204, 401, 500, kHttpConnectionBroken, 200, 200};
    static const std::wstring legacyItem = Wide(LegacyItem("legacy" + kLegacyTimeStamp));
    const auto& operation = kOperations[input.Choice(std::size(kOperations))];
    const int status = kStatuses[input.Choice(std::size(kStatuses))];
    const Fields& before = Prepare();
    Recording() = SuiteRecording();
    Recording().appDataFolder = L"/dev/null/folder";
    Recording().legacyItem = legacyItem;
    Recording().onMainWindowAsked = [] { sem_post(&g_windowAsked); };
    input.text = Stretched(input.text, '#', std::string(41000, ' '));
    for (const std::string& body : input.Parts()) {
        Recording().replies.push_back({200, body, {{"name", body}}});
    }
    Recording().replies.rbegin()[1].code = status;
    if (!operation.run(g_service) && !operation.storesInParts) {
        Require(AccountFields(g_service) == before, "a failed operation changed the state");
        Require(Recording().Lines("store").empty(), "a failed operation told the store");
    }
}

const FuzzTarget kTarget("replies", Replies);

}  // namespace
