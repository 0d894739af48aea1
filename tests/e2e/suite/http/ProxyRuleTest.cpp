#include "http/ProxyRule.h"

#include <gtest/gtest.h>

TEST(HttpProxy, SystemSettings) {
    const struct {
        const wchar_t* setting;
        const wchar_t* bypass;
        const wchar_t* host;
        const wchar_t* proxy;  // for https
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
    };
    for (const auto& row : rows) {
        EXPECT_EQ(suite::ProxyBySettings(row.setting, row.bypass, L"https", row.host), row.proxy)
            << row.setting << L", " << row.bypass << L", " << row.host;
    }
}
