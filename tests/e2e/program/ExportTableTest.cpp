#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <set>
#include <string>

#include "TextFile.h"
#include "system/VersionResource.h"

namespace {

const std::uint8_t* ImageOf(const char* library) {
    return reinterpret_cast<const std::uint8_t*>(LoadLibraryExA(library, nullptr, DONT_RESOLVE_DLL_REFERENCES));
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

// What hosts are linked against: the parameter types are part of each name, as the compiler mangles it. MSVC's names
// are what clang makes of the headers in Microsoft mode; that compiler may add its own __autoclassinit2.
const std::set<std::string> kPublished = {
#if defined(_MSC_VER)
#include "exports/msvc.inc"
#else
#include "exports/mingw.inc"
#endif
};

}  // namespace

TEST(ExportTable, HasExactlyThePublishedNames) {
    std::set<std::string> exported = ExportsOf("UserAuthService.dll");
    exported.erase("?__autoclassinit2@UserAuthService@@QEAAX_K@Z");
    exported.erase("?__autoclassinit2@UserSyncKeyService@@QEAAX_K@Z");
    EXPECT_EQ(exported, kPublished);
}

TEST(ExportTable, TheAccountSdkHasItsTenEntryPoints) {
    EXPECT_EQ(ExportsOf("ZVAccountSdk.dll"),
              (std::set<std::string>{"Init", "Uninit", "SignIn", "OpenAccountCenter", "HasAccountChanged",
                                     "RegisterNotifyFunction", "IsSupportAccount", "GetOAuthDomain",
                                     "IsAccountLoggedIn", "SetLogoutEnable"}));
}

TEST(ExportTable, EveryLibraryAndProgramIsHardenedAndSaysWhatItIs) {
    constexpr WORD kHardened = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                               IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA;
    const std::string version = host::VersionText(ProgramFolder() / "UserAuthService.dll", L"FileVersion");
    EXPECT_EQ(std::count(version.begin(), version.end(), '.'), 3) << version;
    for (const char* file : {"UserAuthService.dll", "ParamStore.dll", "HttpLib.dll", "Logger.dll", "EventAdmin.dll",
                             "ZVAccountSdk.dll", "userauth.exe", "sandbox-server.exe"}) {
        const std::uint8_t* const image = ImageOf(file);
        ASSERT_NE(image, nullptr) << file;
        EXPECT_EQ(HeaderOf(image).DllCharacteristics & kHardened, kHardened) << file;
        EXPECT_EQ(host::VersionText(ProgramFolder() / file, L"FileVersion"), version) << file;
        EXPECT_EQ(host::VersionText(ProgramFolder() / file, L"OriginalFilename"), file);
        EXPECT_NE(host::VersionText(ProgramFolder() / file, L"FileDescription"), "") << file;
    }
}
