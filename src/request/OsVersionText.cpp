#include "request/OsVersionText.h"

#include <windows.h>

#include <shlwapi.h>

#include "OwnedModule.h"
#include "core/EntryPoint.h"

namespace userauth {
namespace {

constexpr wchar_t kUnknownPlatform[] = L"Unknow Platform";  // the spelling is kept as it is
constexpr std::uint32_t kWorkstation = 1;
constexpr std::uint32_t kX64 = 9;
constexpr int kServerR2Metric = 89;

struct ProductRow {
    std::uint32_t major;
    std::uint32_t minor;
    std::uint32_t platformId;  // 0: any
    const wchar_t* workstation;
    const wchar_t* server;
};

// Version 10 is "NT" on every workstation and "2016" on every server: kept as it is. Version 5.2 has rules of its own.
constexpr ProductRow kProducts[] = {
    {4, 0, 2, L"Microsoft Windows NT 4.0", L"Microsoft Windows NT 4.0"},
    {4, 0, 1, L"Microsoft Windows 95", L"Microsoft Windows 95"},
    {4, 10, 0, L"Microsoft Windows 98", L"Microsoft Windows 98"},
    {4, 90, 0, L"Microsoft Windows Me", L"Microsoft Windows Me"},
    {5, 0, 0, L"Microsoft Windows 2000", L"Microsoft Windows 2000"},
    {5, 1, 0, L"Microsoft Windows XP", L"Microsoft Windows XP"},
    {6, 0, 0, L"Microsoft Windows Vista", L"Microsoft Windows Server 2008"},
    {6, 1, 0, L"Microsoft Windows 7", L"Microsoft Windows Server 2008 R2"},
    {6, 2, 0, L"Microsoft Windows 8", L"Microsoft Windows Server 2012"},
    {6, 3, 0, L"Microsoft Windows 8.1", L"Microsoft Windows Server 2012 R2"},
    {10, 0, 0, L"Microsoft Windows NT", L"Microsoft Windows Server 2016"},
};

std::wstring NameOfVersion52(const OsVersion& version, const std::function<int()>& serverR2Metric) {
    if (version.productType == kWorkstation && version.processorArchitecture == kX64) {
        return L"Microsoft Windows XP Professional x64 Edition";
    }
    if (serverR2Metric() == 0) {
        return L"Microsoft Windows Server 2003";
    }
    return serverR2Metric() != 0 ? L"Microsoft Windows Server 2003 R2" : L"";
}

OwnedModule LoadSystemNtdll() {
    wchar_t path[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH || PathAppendW(path, L"ntdll.dll") == FALSE) {
        return nullptr;
    }
    return OwnedModule(LoadLibraryW(path));
}

// The host's manifest and compatibility settings change what the version record says; ntdll's numbers stay true.
void OverwriteWithTrueNumbers(OsVersion& version) {
    const OwnedModule ntdll = LoadSystemNtdll();
    using GetNumbers = void(WINAPI*)(DWORD * major, DWORD * minor, DWORD * build);
    const auto getNumbers =
        ntdll == nullptr ? nullptr : EntryPointOf<GetNumbers>(ntdll.get(), "RtlGetNtVersionNumbers");
    if (getNumbers == nullptr) {
        return;
    }
    DWORD major = 0;
    DWORD minor = 0;
    DWORD build = 0;
    getNumbers(&major, &minor, &build);
    version = WithTrueNumbers(version, major, minor, build);
}

}  // namespace

OsVersion WithTrueNumbers(OsVersion version, std::uint32_t major, std::uint32_t minor, std::uint32_t rawBuild) {
    version.major = major;
    version.minor = minor;
    version.build = rawBuild & 0xFFFF;
    return version;
}

std::wstring OsProductName(const OsVersion& version, const std::function<int()>& serverR2Metric) {
    if (version.major == 5 && version.minor == 2) {
        return NameOfVersion52(version, serverR2Metric);
    }
    for (const ProductRow& row : kProducts) {
        if (row.major == version.major && row.minor == version.minor &&
            (row.platformId == 0 || row.platformId == version.platformId)) {
            return version.productType == kWorkstation ? row.workstation : row.server;
        }
    }
    return {};
}

std::wstring ComposeOsVersionText(const OsVersion& version, const std::function<int()>& serverR2Metric) {
    const std::wstring name = OsProductName(version, serverR2Metric);
    if (name.empty()) {
        return kUnknownPlatform;
    }
    return name + L" " + std::to_wstring(version.major) + L"." + std::to_wstring(version.minor) + L"." +
           std::to_wstring(version.build) + L"." + std::to_wstring(version.servicePackMajor);
}

#if defined(_MSC_VER)
#pragma warning(push)
// The record's service pack and product type are wanted; its numbers are corrected below.
#pragma warning(disable : 4996)
#endif

std::wstring OsVersionText() {
    OSVERSIONINFOEXW record{};
    record.dwOSVersionInfoSize = sizeof(record);
    if (GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&record)) == FALSE) {
        return kUnknownPlatform;
    }
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    OsVersion version;
    version.major = record.dwMajorVersion;
    version.minor = record.dwMinorVersion;
    version.build = record.dwBuildNumber;
    version.servicePackMajor = record.wServicePackMajor;
    version.platformId = record.dwPlatformId;
    version.productType = record.wProductType;
    version.processorArchitecture = system.wProcessorArchitecture;
    OverwriteWithTrueNumbers(version);
    return ComposeOsVersionText(version, [] { return GetSystemMetrics(kServerR2Metric); });
}

#if defined(_MSC_VER)
#pragma warning(pop)
#endif

}  // namespace userauth
