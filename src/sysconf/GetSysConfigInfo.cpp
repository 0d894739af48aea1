#include <ctime>

#include "UserAuthService.h"
#include "core/BoundedFormat.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/SummaryLine.h"
#include "sysconf/SysConfRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::GetSysConfigInfo";
constexpr char kLogHook[] = "UserAuthService::GetSysConfigInfo::<lambda_1>::operator ()";
constexpr char kErrorLogHook[] = "UserAuthService::GetSysConfigInfo::<lambda_2>::operator ()";

// Seconds by clock(), which counts milliseconds on the platform; the divisor is fixed, whatever CLOCKS_PER_SEC says.
std::wstring SecondsSince(std::clock_t start) {
    char seconds[64] = {};
    userauth::FormatString(seconds, sizeof(seconds), "%f", static_cast<double>(std::clock() - start) / 1000.0);
    return userauth::MultiByteToWide(seconds, userauth::kAnsiCodePage);
}

}  // namespace

int UserAuthService::GetSysConfigInfo(std::string& reply) {
    const std::clock_t start = std::clock();
    userauth::BasicServiceRequest request(m_lock, m_strCurrentUserID, m_strCurrentAT);
    request.url = userauth::BasicServiceUrl(L"sysConfInit");
    userauth::AskForSysConf(request, m_strCountryCode);  // read without the lock, by design
    request.logHook = kLogHook;
    request.errorLogHook = kErrorLogHook;
    const int code = userauth::SendBasicServiceRequest(request, reply);

    WriteLog(kSeverityProgress, __LINE__, kTag, L"GetSysConfigInfo httpcode:" + std::to_wstring(code));
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("SysConfInit", request.url, code));
    userauth::WriteSuiteLog(kSeverityProgress, __LINE__, kTag, L"--Request basic use time: " + SecondsSince(start));
    return code;
}
