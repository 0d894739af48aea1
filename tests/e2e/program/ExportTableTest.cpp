#include <cxxabi.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <memory>
#include <set>
#include <sstream>
#include <string>

namespace {

const std::uint8_t* ImageOf(const char* library) {
    return reinterpret_cast<const std::uint8_t*>(LoadLibraryA(library));
}

const IMAGE_OPTIONAL_HEADER64& HeaderOf(const std::uint8_t* image) {
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    return reinterpret_cast<const IMAGE_NT_HEADERS64*>(image + dos->e_lfanew)->OptionalHeader;
}

std::string Demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(abi::__cxa_demangle(name, nullptr, nullptr, &status), std::free);
    return status == 0 ? text.get() : name;
}

// Exported names without arguments; overloads and the variants of constructors and destructors fall together.
std::set<std::string> ExportsOf(const char* library) {
    const std::uint8_t* const image = ImageOf(library);
    const auto& directory = HeaderOf(image).DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* const exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(image + directory.VirtualAddress);
    const auto* const names = reinterpret_cast<const DWORD*>(image + exports->AddressOfNames);
    std::set<std::string> result;
    for (DWORD index = 0; index < exports->NumberOfNames; ++index) {
        std::string name = Demangled(reinterpret_cast<const char*>(image + names[index]));
        name = name.substr(0, name.find('('));
        const std::size_t abiTag = name.find("[abi:");
        result.insert(name.substr(0, abiTag));
    }
    return result;
}

void AddMembers(std::set<std::string>& names, const std::string& type, const std::string& members) {
    std::istringstream words(members);
    for (std::string member; words >> member;) {
        names.insert(type + "::" + member);
    }
}

}  // namespace

TEST(ExportTable, HasExactlyThePublishedNames) {
    std::set<std::string> expected = {"FnUserAuthService", "g_nUserAuthService"};
    AddMembers(expected, "UserAuthService",
               "UserAuthService ~UserAuthService __autoclassinit2 GetInstance Clear GetCurrentAT GetCurrentRT "
               "GetCurrentUserID GetCurrentUserName GetCurrentUserHeadImageUrl GetCurrentUserHeadImageLocalPath "
               "GetCurrentCountryCode SetCurrentAT SetCurrentRT SetCurrrentUserID SetCurrentUserHeadImageLocalPath "
               "SetCurrentUserInfo GetCurrentUserAccountBrandID GetCountryCode GetLanguageType GetCurrentPriviledge "
               "GetClientLogReportStatus IsActiveAccount IsAvailableCountry GetValidModule SetRealUserKey "
               "GetRealUserKey GetGPWPtr GetTraceID GetRandom BuildHeaders GetAuthorizationContents StringToJson "
               "RequestAT LoadZMSSDKLibrary UpdateAppIdConfig InitializeSDK UnInitializeSDK ZmsSignIn "
               "OpenAccountCenterInvoke RegisterLogout IsZmsAccountChanged RegisterNotifyFunctionInvoke "
               "GetAccessTokenByRefrshToken SetAtExpireCallback RequestApplicationAT RequestUserID "
               "RequestUserIdFromSyncServer RequestUserInfo UpdateRegistInfo IsChinaAccount InitZms IsZmsSignIn "
               "GetRtqRemoteInfo GetOldVersionUserId GetSysConfigInfo InitSysConf InitPcAvailable InitActiveAccount "
               "InitInvalidModules ActiveUser ReportLoginTime RequestClientLogReport GetLoginDevicesHistory "
               "ExportContracts ContractsCounts");
    AddMembers(expected, "UserSyncKeyService",
               "UserSyncKeyService ~UserSyncKeyService operator= InitUserSyncKey getUserKeyList encodeUserKey "
               "ClearUserSyncKey IsSyncDriveKeyInited IsCloudPhotoKeyInited");
    EXPECT_EQ(ExportsOf("UserAuthService.dll"), expected);
}

TEST(ExportTable, TheAccountSdkHasItsTenEntryPoints) {
    EXPECT_EQ(ExportsOf("ZVAccountSdk.dll"),
              (std::set<std::string>{"Init", "Uninit", "SignIn", "OpenAccountCenter", "HasAccountChanged",
                                     "RegisterNotifyFunction", "IsSupportAccount", "GetOAuthDomain",
                                     "IsAccountLoggedIn", "SetLogoutEnable"}));
}

TEST(ExportTable, EveryLibraryIsHardenedAndCarriesItsVersion) {
    constexpr WORD kHardened = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                               IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA;
    for (const char* library :
         {"UserAuthService.dll", "ParamStore.dll", "HttpLib.dll", "Logger.dll", "EventAdmin.dll", "ZVAccountSdk.dll"}) {
        const std::uint8_t* const image = ImageOf(library);
        ASSERT_NE(image, nullptr) << library;
        EXPECT_EQ(HeaderOf(image).DllCharacteristics & kHardened, kHardened) << library;
        EXPECT_NE(FindResourceW(reinterpret_cast<HMODULE>(const_cast<std::uint8_t*>(image)), MAKEINTRESOURCEW(1),
                                MAKEINTRESOURCEW(16)),
                  nullptr)
            << library << " has no version resource";
    }
}
