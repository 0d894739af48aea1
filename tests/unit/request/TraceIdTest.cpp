#include <cstdlib>
#include <ctime>
#include <regex>

#include "ServiceFixture.h"

using TraceId = ServiceTest;

TEST_F(TraceId, HasCommandCodeTimeAndDigits) {
    const auto before = std::time(nullptr);
    const std::wstring id = m_service->GetTraceID(BaseCmd::kRequestAccessToken);
    const auto after = std::time(nullptr);
    std::wsmatch parts;
    ASSERT_TRUE(std::regex_match(id, parts, std::wregex(L"10006_11_(\\d+)_[0-7][0-8]{7}")));
    const auto time = std::stoll(parts[1].str());
    EXPECT_LE(before, time);
    EXPECT_LE(time, after);
    EXPECT_EQ(m_service->GetTraceID(static_cast<BaseCmd>(42)).substr(0, 9), L"00042_11_");
}

TEST_F(TraceId, RandomDigitsComeFromTheirAlphabetAndAreReseededEachSecond) {
    EXPECT_EQ(UserAuthServiceAccess::Random(*m_service, 0), L"");
    EXPECT_EQ(UserAuthServiceAccess::Random(*m_service, -3), L"");
    EXPECT_EQ(UserAuthServiceAccess::Random(*m_service, 1).size(), 1U);
    std::time_t second = 0;
    std::wstring first, again, id, sameId;
    do {
        second = std::time(nullptr);
        first = UserAuthServiceAccess::Random(*m_service, 2000);
        again = UserAuthServiceAccess::Random(*m_service, 2000);
        id = m_service->GetTraceID(BaseCmd::kRequestAccessToken);
        sameId = m_service->GetTraceID(BaseCmd::kRequestAccessToken);
    } while (std::time(nullptr) != second);
    EXPECT_EQ(first, again);
    EXPECT_EQ(id, sameId) << "ids of one second are alike";
    // The first digit is drawn modulo 8, the others modulo 9, from a generator seeded with the second.
    std::srand(static_cast<unsigned>(second));
    for (std::size_t index = 0; index < first.size(); ++index) {
        ASSERT_EQ(first[index], L'0' + std::rand() % (index == 0 ? 8 : 9)) << index;  // NOLINT(cert-msc50-cpp)
    }
    EXPECT_EQ(first.size(), 2000U);
}
