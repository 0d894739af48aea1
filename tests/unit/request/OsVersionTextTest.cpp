#include "request/OsVersionText.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <regex>
#include <vector>

using userauth::ComposeOsVersionText;
using userauth::OsVersion;

TEST(OsVersionText, EveryRowOfTheTable) {
    constexpr std::uint32_t kServer = 3;
    const struct {
        std::uint32_t major, minor, platformId, productType, architecture;
        std::vector<int> metric;  // answers in their order; asking once more would fail the test
        std::wstring text;
    } rows[] = {
        {4, 0, 2, 1, 0, {}, L"Microsoft Windows NT 4.0 4.0.77.2"},
        {4, 0, 1, 1, 0, {}, L"Microsoft Windows 95 4.0.77.2"},
        {4, 0, 3, 1, 0, {}, L"Unknow Platform"},
        {4, 10, 1, 1, 0, {}, L"Microsoft Windows 98 4.10.77.2"},
        {4, 90, 1, 1, 0, {}, L"Microsoft Windows Me 4.90.77.2"},
        {5, 0, 2, 1, 0, {}, L"Microsoft Windows 2000 5.0.77.2"},
        {5, 1, 2, 1, 0, {}, L"Microsoft Windows XP 5.1.77.2"},
        {5, 2, 2, 1, 9, {}, L"Microsoft Windows XP Professional x64 Edition 5.2.77.2"},
        {5, 2, 2, 1, 0, {0}, L"Microsoft Windows Server 2003 5.2.77.2"},
        {5, 2, 2, kServer, 9, {0}, L"Microsoft Windows Server 2003 5.2.77.2"},
        {5, 2, 2, kServer, 9, {1, 1}, L"Microsoft Windows Server 2003 R2 5.2.77.2"},
        {5, 2, 2, kServer, 9, {1, 0}, L"Unknow Platform"},
        {6, 0, 2, 1, 9, {}, L"Microsoft Windows Vista 6.0.77.2"},
        {6, 0, 2, kServer, 9, {}, L"Microsoft Windows Server 2008 6.0.77.2"},
        {6, 1, 2, 1, 9, {}, L"Microsoft Windows 7 6.1.77.2"},
        {6, 1, 2, kServer, 9, {}, L"Microsoft Windows Server 2008 R2 6.1.77.2"},
        {6, 2, 2, 1, 9, {}, L"Microsoft Windows 8 6.2.77.2"},
        {6, 2, 2, kServer, 9, {}, L"Microsoft Windows Server 2012 6.2.77.2"},
        {6, 3, 2, 1, 9, {}, L"Microsoft Windows 8.1 6.3.77.2"},
        {6, 3, 2, kServer, 9, {}, L"Microsoft Windows Server 2012 R2 6.3.77.2"},
        {6, 4, 2, 1, 9, {}, L"Unknow Platform"},
        {10, 0, 2, 1, 9, {}, L"Microsoft Windows NT 10.0.77.2"},
        {10, 0, 2, kServer, 9, {}, L"Microsoft Windows Server 2016 10.0.77.2"},
        {10, 1, 2, 1, 9, {}, L"Unknow Platform"},
        {11, 0, 2, 1, 9, {}, L"Unknow Platform"},
        {0, 0, 0, 0, 0, {}, L"Unknow Platform"},
    };
    for (const auto& row : rows) {
        const OsVersion version{row.major, row.minor, 77, 2, row.platformId, row.productType, row.architecture};
        std::size_t asked = 0;
        EXPECT_EQ(ComposeOsVersionText(version, [&] { return row.metric.at(asked++); }), row.text);
        EXPECT_EQ(asked, row.metric.size()) << row.text;
    }
}

TEST(OsVersionText, NtdllCorrectsWhatTheVersionRecordSays) {
    const OsVersion record{6, 2, 9200, 1, 2, 1, 9};
    EXPECT_EQ(ComposeOsVersionText(userauth::WithTrueNumbers(record, 10, 0, 0xF0014A61), {}),
              L"Microsoft Windows NT 10.0.19041.1");
}

TEST(OsVersionText, ThisMachineHasAName) {
    const std::wstring text = userauth::OsVersionText();
    std::wsmatch parts;
    ASSERT_TRUE(
        std::regex_match(text, parts, std::wregex(L"Microsoft Windows ([\\w. ]+) \\d+\\.\\d+\\.(\\d{4,5})\\.(\\d+)")));
    OSVERSIONINFOEXW record{};
    record.dwOSVersionInfoSize = sizeof(record);
    ASSERT_NE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&record)), FALSE);
    EXPECT_EQ(parts[1].str().find(L"Server") == std::wstring::npos, record.wProductType == 1);
    EXPECT_EQ(parts[3].str(), std::to_wstring(record.wServicePackMajor));
}
