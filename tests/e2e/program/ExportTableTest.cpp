#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>

namespace {

const std::uint8_t* ImageOf(const char* library) {
    return reinterpret_cast<const std::uint8_t*>(LoadLibraryA(library));
}

const IMAGE_OPTIONAL_HEADER64& HeaderOf(const std::uint8_t* image) {
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    return reinterpret_cast<const IMAGE_NT_HEADERS64*>(image + dos->e_lfanew)->OptionalHeader;
}

std::set<std::string> ExportsOf(const char* library) {
    const std::uint8_t* const image = ImageOf(library);
    const auto& directory = HeaderOf(image).DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* const exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(image + directory.VirtualAddress);
    const auto* const names = reinterpret_cast<const DWORD*>(image + exports->AddressOfNames);
    std::set<std::string> result;
    for (DWORD index = 0; index < exports->NumberOfNames; ++index) {
        result.insert(reinterpret_cast<const char*>(image + names[index]));
    }
    return result;
}

// What hosts are linked against, as this compiler mangles it: the parameter types are part of each name.
const std::set<std::string> kPublished = {
    "FnUserAuthService",
    "_ZN15UserAuthService10ActiveUserEv",
    "_ZN15UserAuthService10GetTraceIDB5cxx11E7BaseCmd",
    "_ZN15UserAuthService11GetInstanceEv",
    "_ZN15UserAuthService11InitSysConfEv",
    "_ZN15UserAuthService11IsZmsSignInEv",
    "_ZN15UserAuthService12BuildHeadersE8HeadTypeRKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
    "_ZN15UserAuthService12GetCurrentATB5cxx11Ev",
    "_ZN15UserAuthService12GetCurrentRTB5cxx11Ev",
    "_ZN15UserAuthService12SetCurrentATERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
    "_ZN15UserAuthService12SetCurrentRTERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
    "_ZN15UserAuthService12StringToJsonENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
    "_ZN15UserAuthService13InitializeSDKEv",
    "_ZN15UserAuthService13RequestUserIDEv",
    "_ZN15UserAuthService14GetCountryCodeB5cxx11Ev",
    "_ZN15UserAuthService14GetRealUserKeyEv",
    "_ZN15UserAuthService14GetValidModuleB5cxx11Ev",
    "_ZN15UserAuthService14IsChinaAccountEv",
    "_ZN15UserAuthService14RegisterLogoutERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES6_",
    "_ZN15UserAuthService14SetRealUserKeyESt6vectorIhSaIhEE",
    "_ZN15UserAuthService15ContractsCountsENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
    ("_ZN15UserAuthService15ExportContractsENSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEES5_St3mapIS5_S5_"
     "St4lessIS5_ESaISt4pairIKS5_S5_EEE"),
    "_ZN15UserAuthService15InitPcAvailableERN4Json5ValueE",
    "_ZN15UserAuthService15IsActiveAccountEv",
    "_ZN15UserAuthService15ReportLoginTimeENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
    "_ZN15UserAuthService15RequestUserInfoEv",
    "_ZN15UserAuthService15UnInitializeSDKEv",
    "_ZN15UserAuthService16GetCurrentUserIDB5cxx11Ev",
    ("_ZN15UserAuthService16GetRtqRemoteInfoENSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEERSt3mapINS1_IcS2_"
     "IcESaIcEEES9_St4lessIS9_ESaISt4pairIKS9_S9_EEE"),
    "_ZN15UserAuthService16GetSysConfigInfoERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
    "_ZN15UserAuthService16UpdateRegistInfoEv",
    "_ZN15UserAuthService16__autoclassinit2Ey",
    "_ZN15UserAuthService17InitActiveAccountERN4Json5ValueE",
    "_ZN15UserAuthService17LoadZMSSDKLibraryEv",
    "_ZN15UserAuthService17SetCurrrentUserIDERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
    "_ZN15UserAuthService17UpdateAppIdConfigEv",
    "_ZN15UserAuthService18GetCurrentUserNameB5cxx11Ev",
    "_ZN15UserAuthService18InitInvalidModulesERN4Json5ValueE",
    "_ZN15UserAuthService18IsAvailableCountryEv",
    "_ZN15UserAuthService18SetCurrentUserInfoERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEES7_S7_i",
    "_ZN15UserAuthService19GetOldVersionUserIdB5cxx11Ev",
    "_ZN15UserAuthService19IsZmsAccountChangedERNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
    "_ZN15UserAuthService19SetAtExpireCallbackERKSt8functionIFvvEE",
    "_ZN15UserAuthService20GetCurrentPriviledgeEv",
    "_ZN15UserAuthService20RequestApplicationATEv",
    "_ZN15UserAuthService21GetCurrentCountryCodeB5cxx11Ev",
    "_ZN15UserAuthService22GetLoginDevicesHistoryERSt6vectorI9DeviceTagSaIS1_EE",
    "_ZN15UserAuthService22RequestClientLogReportEv",
    "_ZN15UserAuthService23OpenAccountCenterInvokeEv",
    "_ZN15UserAuthService24GetAuthorizationContentsB5cxx11Ev",
    "_ZN15UserAuthService24GetClientLogReportStatusEv",
    "_ZN15UserAuthService26GetCurrentUserHeadImageUrlB5cxx11Ev",
    "_ZN15UserAuthService27GetAccessTokenByRefrshTokenEv",
    "_ZN15UserAuthService27RequestUserIdFromSyncServerEv",
    "_ZN15UserAuthService28GetCurrentUserAccountBrandIDEv",
    "_ZN15UserAuthService28RegisterNotifyFunctionInvokeEPFv11MessageTypePcS1_E",
    "_ZN15UserAuthService32GetCurrentUserHeadImageLocalPathB5cxx11Ev",
    "_ZN15UserAuthService32SetCurrentUserHeadImageLocalPathERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
    "_ZN15UserAuthService5ClearEv",
    "_ZN15UserAuthService7InitZmsEPFv11MessageTypePcS1_E",
    "_ZN15UserAuthService9GetGPWPtrEv",
    "_ZN15UserAuthService9GetRandomB5cxx11Ei",
    "_ZN15UserAuthService9RequestATENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEPKc",
    "_ZN15UserAuthService9ZmsSignInEv",
    "_ZN15UserAuthServiceC1Ev",
    "_ZN15UserAuthServiceC2Ev",
    "_ZN15UserAuthServiceD1Ev",
    "_ZN15UserAuthServiceD2Ev",
    ("_ZN18UserSyncKeyService13encodeUserKeyERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES7_S7_"
     "RKiRKSt6vectorIhSaIhEERKNS1_IwS2_IwESaIwEEE"),
    ("_ZN18UserSyncKeyService14getUserKeyListERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEES5_"
     "St6vectorIhSaIhEES7_"),
    "_ZN18UserSyncKeyService15InitUserSyncKeyEv",
    "_ZN18UserSyncKeyService16ClearUserSyncKeyEv",
    "_ZN18UserSyncKeyService20IsSyncDriveKeyInitedEv",
    "_ZN18UserSyncKeyService21IsCloudPhotoKeyInitedEv",
    "_ZN18UserSyncKeyServiceC1Ev",
    "_ZN18UserSyncKeyServiceC2Ev",
    "_ZN18UserSyncKeyServiceD1Ev",
    "_ZN18UserSyncKeyServiceD2Ev",
    "_ZN18UserSyncKeyServiceaSERKS_",
    "_ZNK15UserAuthService15GetLanguageTypeB5cxx11Ev",
    "g_nUserAuthService",
};

}  // namespace

TEST(ExportTable, HasExactlyThePublishedNames) { EXPECT_EQ(ExportsOf("UserAuthService.dll"), kPublished); }

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
