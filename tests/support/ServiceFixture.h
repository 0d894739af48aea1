#pragma once

#include <gtest/gtest.h>
#include <json/value.h>
#include <windows.h>

#include <filesystem>
#include <functional>
#include <memory>

#include "ScriptedSdk.h"
#include "SuiteStandIns.h"
#include "TextFile.h"
#include "UserAuthService.h"

using Lines = std::vector<std::string>;
using Headers = std::map<std::wstring, std::wstring>;

// Lines of the recording: of the service's log, and of a push to the store.
inline Lines Log(const char* severity, const std::string& operation, const std::string& message) {
    return {"log 10 " + std::string(severity) + " UserAuthService::" + operation + " " + message};
}
inline Lines Store(const std::string& setter, const std::string& value) { return {"store " + setter + " " + value}; }

inline Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// Base URL of the basic service's operations, as the stand-in of the parameter store has it.
inline const std::string kBasicService = "https://basic.example.com/KeCloudUserFoundationService/PC/";

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // GCC 12 sees it in every text of a base in an initialiser list
#endif
// The start of a row in a table of outcomes: a name, the one reply, and what the operation returns then.
struct ReplyRow {
    const char* name;
    int status;
    std::string body;
    bool result;
};

// The one door to the service's private operations and fields.
class UserAuthServiceAccess {
public:
    static std::unique_ptr<UserAuthService> Make() { return std::unique_ptr<UserAuthService>(new UserAuthService()); }
    static Headers BuildHeaders(UserAuthService& service, HeadType type, const std::wstring& traceId) {
        return service.BuildHeaders(type, traceId);
    }
    static std::string Authorization(UserAuthService& service) { return service.GetAuthorizationContents(); }
    static std::wstring Random(UserAuthService& service, int length) { return service.GetRandom(length); }
    static Json::Value Parse(UserAuthService& service, const std::string& text) { return service.StringToJson(text); }
    static void UpdateAppIdConfig(UserAuthService& service) { service.UpdateAppIdConfig(); }
    static bool SdkLoaded(const UserAuthService& service) { return service.m_bSdkLoaded; }
    // The singleton keeps its SDK until the process ends; a test gives it back.
    static void Unload(UserAuthService& service) {
        service.m_sdk = {};
        service.m_hSdkModule.reset();
    }
    static AccountSdkEntryPoints& Sdk(UserAuthService& service) { return service.m_sdk; }
    static std::string& ResultCode(UserAuthService& service) { return service.m_strResultCode; }
    static std::string& ResultDescription(UserAuthService& service) { return service.m_strResultDesc; }
    static int Expires(const UserAuthService& service) { return service.m_nAtExpires; }
    static int OauthStatus(const UserAuthService& service) { return service.m_nOauthHttpStatusCode; }
    static int OauthSubError(const UserAuthService& service) { return service.m_nOauthSubErrorCode; }
    static int ApplicationExpires(const UserAuthService& service) { return service.m_nAppAtExpires; }
    // The lock's storage is one SRWLOCK; see AccountStateLock.h.
    static SRWLOCK* NativeLock(UserAuthService& service) { return reinterpret_cast<SRWLOCK*>(&service.m_lock); }
    static std::wstring& Country(UserAuthService& service) { return service.m_strCountryCode; }
};

// Puts one of the test SDKs beside the test program, where the service's objects look for the account SDK; removes it
// again.
class InstalledSdk {
public:
    explicit InstalledSdk(const char* library) {
        std::filesystem::remove(m_path);  // what a crashed run has left
        std::filesystem::copy_file(ProgramFolder() / library, m_path);
    }
    ~InstalledSdk() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    InstalledSdk(const InstalledSdk&) = delete;
    InstalledSdk& operator=(const InstalledSdk&) = delete;

    // Of the loaded SDK.
    static SdkScript& Script() {
        return *reinterpret_cast<SdkScript*>(GetProcAddress(GetModuleHandleW(L"ZVAccountSdk.dll"), "g_script"));
    }

private:
    std::filesystem::path m_path = ProgramFolder() / "ZVAccountSdk.dll";
};

// The singleton, which some operations read the access token from; without its SDK, whose file it would keep in use.
inline UserAuthService& Singleton() {
    UserAuthService& service = *UserAuthService::GetInstance();
    UserAuthServiceAccess::Unload(service);
    return service;
}

// A fresh service on the scripted SDK, with an empty recording.
class ServiceTest : public testing::Test {
protected:
    ServiceTest() {
        Recording() = SuiteRecording();
        m_service = UserAuthServiceAccess::Make();
        Recording().journal.clear();
    }
    // The hooks that a test has set refer to the test's variables.
    ~ServiceTest() override {
        Recording().duringExchange = nullptr;
        Recording().duringPush = [] {};
    }

    // What the operation leaves in the journal after the row's reply; see SuiteRecording::TakeOutcome.
    template <typename Operation>
    Lines Outcome(const ReplyRow& row, Operation operation) {
        Recording().journal.clear();
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(std::invoke(operation, *m_service), row.result) << row.name;
        return Recording().TakeOutcome();
    }

    InstalledSdk m_sdk{"scripted-sdk.dll"};
    std::unique_ptr<UserAuthService> m_service;
};
