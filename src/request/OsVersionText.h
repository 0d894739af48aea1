#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace userauth {

// What the platform says of itself. Numbers as in its extended version record.
struct OsVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    std::uint32_t servicePackMajor = 0;
    std::uint32_t platformId = 0;             // 1: the 9x line, 2: the NT line
    std::uint32_t productType = 0;            // 1: workstation
    std::uint32_t processorArchitecture = 0;  // 9: x64
};

// The version with the numbers that ntdll tells; the upper half of its build number marks checked and free builds.
OsVersion WithTrueNumbers(OsVersion version, std::uint32_t major, std::uint32_t minor, std::uint32_t rawBuild);

// Product name of a version, empty for one that is not known. serverR2Metric answers system metric 89; version 5.2 asks
// it once, and once more when the first answer is not 0.
std::wstring OsProductName(const OsVersion& version, const std::function<int()>& serverR2Metric);

// Name, blank and "major.minor.build.servicepack", or "Unknow Platform".
std::wstring ComposeOsVersionText(const OsVersion& version, const std::function<int()>& serverR2Metric);

// The text of the running machine, asked anew on each call.
std::wstring OsVersionText();

}  // namespace userauth
