#include <json/value.h>

#include <algorithm>
#include <charconv>
#include <ctime>
#include <iterator>

#include "UserAuthService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "sysconf/BasicServiceRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::GetSysConfigInfo";
constexpr char kLogHook[] = "UserAuthService::GetSysConfigInfo::<lambda_1>::operator ()";
constexpr char kErrorLogHook[] = "UserAuthService::GetSysConfigInfo::<lambda_2>::operator ()";

// Seconds by clock(), which counts milliseconds on the platform; the divisor is fixed, whatever CLOCKS_PER_SEC says.
// Written as "%f" writes them, but with a point whatever locale the host has set.
std::wstring SecondsSince(std::clock_t start) {
    constexpr int kDecimals = 6;
    char text[64] = {};
    const double seconds = static_cast<double>(std::clock() - start) / 1000.0;
    const std::to_chars_result end =
        std::to_chars(std::begin(text), std::end(text), seconds, std::chars_format::fixed, kDecimals);
    return {std::begin(text), end.ptr};
}

struct Module {
    const char* key;      // its switch in the configuration
    const wchar_t* name;  // as the host calls it
};
constexpr Module kModules[] = {
    {"funcfg_contacts", L"Contacts"},
    {"funcfg_gallery", L"Gallery"},
    {"funcfg_notes", L"Notepad"},
    {"funcfg_find_my_phone_globe", L"FindDevice"},
    {"funcfg_recordings_up", L"Recorder"},
    {"funcfg_manage_storage", L"ManageSpace"},
    {"funcfg_drive", L"Drive"},
};

}  // namespace

bool UserAuthService::InitSysConf() try {
    std::string reply;
    if (!userauth::IsBasicServiceSuccess(GetSysConfigInfo(reply))) {
        return false;
    }
    Json::Value root;
    if (!userauth::ParseDocument(reply, root)) {
        return false;
    }
    const bool availableCountry = m_bAvailableCountry;
    const bool activeAccount = m_bActiveAccount;
    try {
        InitPcAvailable(root);
        InitActiveAccount(root);
        InitInvalidModules(root);
    } catch (...) {
        // Out of memory: the configuration is taken as a whole or not at all.
        m_bAvailableCountry = availableCountry;
        m_bActiveAccount = activeAccount;
        return false;
    }
    return true;
} catch (...) {
    return false;
}

int UserAuthService::GetSysConfigInfo(std::string& reply) {
    const std::clock_t start = std::clock();
    userauth::BasicServiceRequest request(m_lock, m_strCurrentUserID, m_strCurrentAT);
    request.url = userauth::BasicServiceUrl(L"sysConfInit");
    userauth::AskForSysConf(request, m_strCountryCode);  // without the lock: see UserAuthService.h
    request.logHook = kLogHook;
    request.errorLogHook = kErrorLogHook;
    const int code = userauth::SendBasicServiceRequest(request, reply);

    WriteLog(kSeverityProgress, __LINE__, kTag, L"GetSysConfigInfo httpcode:" + std::to_wstring(code));
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("SysConfInit", request.url, code));
    userauth::WriteSuiteLog(kSeverityProgress, __LINE__, kTag, L"--Request basic use time: " + SecondsSince(start));
    return code;
}

void UserAuthService::InitPcAvailable(Json::Value& root) {
    m_bAvailableCountry = userauth::Reply::Of(root).Member("params").ConvertedText("funcfg_pc_available") == "true";
}

// The name is the interface's: what it collects are the modules that are switched on.
void UserAuthService::InitInvalidModules(Json::Value& root) {
    std::vector<std::wstring> modules;
    const userauth::Reply params = userauth::Reply::Of(root).Member("params");
    for (const std::string& name : params.MemberNames()) {
        const auto* const module = std::find_if(std::begin(kModules), std::end(kModules),
                                                [&name](const Module& known) { return name == known.key; });
        if (module != std::end(kModules) && params.ConvertedText(name.c_str()) == "true") {
            modules.emplace_back(module->name);
        }
    }
    m_vecValidModules.swap(modules);
}
