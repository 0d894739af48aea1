#include <Logger.h>
#include <ParamStore.h>
#include <windows.h>

#include <exception>

#include "UserAuthService.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "core/WindowMessages.h"
#include "profile/PortraitDownload.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "request/UserAuthRequest.h"

namespace {

using userauth::kUtf8CodePage;
using userauth::MultiByteToWide;
using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::RequestUserInfo";

// Business event of the profile request: basic event, operation, action.
constexpr int kEventUserInfo[] = {251, 5, 0};

// Sends the request and leaves its lines in the log.
userauth::WebRequestResult SendProfileRequest(const std::wstring& accessToken) {
    const std::wstring url = GlobalParamWrapper::GetInstance()->GetUserInformationserviceUrl() +
                             L"/KeCloudUserInformationService/v1/users?fields=userId,displayName,profilePhotoLink";
    userauth::UserAuthRequest request;
    request.SetGetRequest(url, {{L"Authorization", L"Bearer " + accessToken}});
    userauth::WebRequestResult result;
    request.SendWebRequest(result);
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("RequestUserInfo", url, result.nHttpCode));
    Logger::OutputOperationLog(kEventUserInfo[0], kEventUserInfo[1], kEventUserInfo[2]);
    return result;
}

}  // namespace

bool UserAuthService::RequestUserInfo() try {
    // One file without extension, whatever the image type.
    const std::wstring portraitPath = GlobalParamWrapper::GetInstance()->GetAppDataLocalPath() + L"\\HeadPortrait";
    const userauth::WebRequestResult result = SendProfileRequest(GetInstance()->GetCurrentAT());
    if (result.nHttpCode != userauth::kHttpOk) {
        WriteLog(kSeverityFailure, __LINE__, kTag,
                 L"Error: GetUserInfo failed, httpcode = " + std::to_wstring(result.nHttpCode));
        return false;
    }
    const userauth::Reply reply(result.szResponse);
    const std::string photoLink = reply.Text("profilePhotoLink");
    // Converted before the first change, so that little can fail between the portrait's change and the name's: a
    // portrait of one account does not belong beside another's name.
    const std::wstring userId = MultiByteToWide(reply.Text("userId"), kUtf8CodePage);
    const std::wstring userName = MultiByteToWide(reply.Text("displayName"), kUtf8CodePage);
    const std::wstring wideLink = MultiByteToWide(photoLink, kUtf8CodePage);
    if (photoLink.empty()) {
        SetCurrentUserHeadImageLocalPath(L"");
        userauth::PostPortraitChanged();
    } else {
        WriteLog(kSeverityProgress, __LINE__, kTag, L"GetprofilePhotoLink start");
        DeleteFileW(portraitPath.c_str());
        // The download takes the link in the ANSI code page, the account state below in UTF-8: kept as it is.
        userauth::StartPortraitDownload({portraitPath, MultiByteToWide(photoLink, userauth::kAnsiCodePage), this});
    }
    SetCurrentUserInfo(userId, userName, wideLink, reply.Integer("accountBrand"));
    SetCurrrentUserID(userId);
    WriteLog(kSeverityProgress, __LINE__, kTag, L"GetUserInfo successed!");
    return true;
} catch (const userauth::PortraitThreadNotStarted& failure) {
    std::rethrow_exception(failure.cause);  // the one exception that reaches the caller
} catch (...) {
    return false;
}
