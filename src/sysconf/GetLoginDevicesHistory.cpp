#include <json/value.h>
#include <windows.h>

#include <iterator>

#include "UserAuthService.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/UserAuthRequest.h"
#include "sysconf/BasicServiceRequest.h"

namespace {

using userauth::kUtf8CodePage;
using userauth::MultiByteToWide;
using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::GetLoginDevicesHistory";

userauth::JsonData Body() {
    Json::Value body(Json::objectValue);
    body["version"] = "2.0";
    return userauth::JsonData(body);
}

DeviceTag ReadDevice(const userauth::Reply& entry) {
    // Up to the first zero byte, as C strings end.
    const auto text = [&entry](const char* name) {
        const std::string value = entry.Text(name);
        return MultiByteToWide(value.substr(0, value.find('\0')), kUtf8CodePage);
    };
    DeviceTag device;
    device.aliasName = text("aliasName");
    device.devDisplayName = text("devDisplayName");
    device.deviceCategory = text("deviceCategory");
    device.deviceId = text("deviceId");
    device.lastUpdateTime = text("lastUpdateTime");
    device.opDesc = text("opDesc");
    device.deviceType = entry.ConvertedInteger("deviceType").value_or(0);
    return device;
}

}  // namespace

bool UserAuthService::GetLoginDevicesHistory(std::vector<DeviceTag>& devices) try {
    const std::wstring traceId = GetTraceID(BaseCmd::kLoginDevicesHistory);
    userauth::UserAuthRequest request;
    request.SetPostRequest(userauth::BasicServiceUrl(L"getLastOperationRecord"),
                           BuildHeaders(HeadType::kAccount, traceId), Body());
    userauth::WebRequestResult result;
    request.SendWebRequest(result);
    // 200 only, unlike the other basic-service operations.
    if (result.nHttpCode != userauth::kHttpOk) {
        WriteLog(kSeverityFailure, __LINE__, kTag, L"Error: GetLoginDevicesHistory failed!");
        return false;
    }
    const std::wstring replyText = MultiByteToWide(result.szResponse, kUtf8CodePage);
    OutputDebugStringW(replyText.c_str());
    WriteLog(kSeveritySummary, __LINE__, kTag, replyText);
    std::vector<DeviceTag> found;
    for (const userauth::Reply& entry : userauth::Reply(result.szResponse).Elements("opRecordList")) {
        found.push_back(ReadDevice(entry));
    }
    devices.insert(devices.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
    // Also when the reply is no JSON or has no list.
    WriteLog(kSeverityProgress, __LINE__, kTag, L"GetLoginDevicesHistory successed!");
    return true;
} catch (...) {
    return false;
}
