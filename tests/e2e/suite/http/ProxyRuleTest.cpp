#include "http/ProxyRule.h"

#include <gtest/gtest.h>

// A search that tries every place for every star never ends on these.
constexpr const wchar_t* kManyStars = L"*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b";
constexpr const wchar_t* kManyLetters = L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa";

TEST(HttpProxy, SystemSettings) {
    const struct {
        const wchar_t* setting;
        const wchar_t* bypass;
        const wchar_t* host;
        const wchar_t* proxy;  // for https, port 8443
    } rows[] = {
        {L"p:1", L"", L"h.example", L"p:1"},
        {L"http=p:1;https=q:2", L"", L"h.example", L"q:2"},
        {L"http=p:1 https=q:2", L"", L"h.example", L"q:2"},
        {L"http=p:1", L"", L"h.example", L""},
        {L"", L"", L"h.example", L""},
        {L"p:1", L"*.corp;h.exam*", L"h.example", L""},
        {L"p:1", L"*.corp 10.*", L"10.1.2.3", L""},
        {L"p:1", L"*.corp;<local>", L"corp", L""},
        {L"p:1", L"*.corp;<local>", L"h.example", L"p:1"},
        {L"p:1", L"*.corp", L"corp.example", L"p:1"},
        {L"p:1", L"?.e*l* *.", L"h.example", L""},
        {L"p:1", L"h.example?;h.exampl;*.", L"h.example", L"p:1"},
        {L"p:1", kManyStars, kManyLetters, L"p:1"},
        {L"http=p:1;HTTPS=q:2", L"", L"h.example", L"q:2"},
        {L"http=p:1;q:2", L"", L"h.example", L"q:2"},
        {L"p:1", L"H.Example;<LOCAL>", L"h.example", L""},
        {L"p:1", L"*.corp h.example:8443", L"h.example", L""},
        {L"p:1", L"h.example:443", L"h.example", L"p:1"},
        {L"p:1", L"HTTPS://h.*:8443", L"h.example", L""},
        {L"p:1", L"http://h.example", L"h.example", L"p:1"},
        {L"p:1", L"[fd00::1]:8443", L"[fd00::1]", L""},
        {L"p:1", L"fd00::*", L"[fd00::1]", L""},
        {L"socks=s:3", L"", L"h.example", L"socks4a://s:3"},
        {L"http=p:1;SOCKS=s:3", L"", L"h.example", L"socks4a://s:3"},
        {L"socks=s:3;https=q:2", L"", L"h.example", L"q:2"},
        {L"socks=socks5://s:3", L"", L"h.example", L"socks5h://s:3"},
        {L"socks://s:3", L"", L"h.example", L"socks4a://s:3"},
        {L"socks=s:3", L"h.example", L"h.example", L""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(suite::ProxyBySettings(row.setting, row.bypass, {L"https", row.host, L"8443"}), row.proxy)
            << row.setting << L", " << row.bypass << L", " << row.host;
    }
}
