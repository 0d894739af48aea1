#include <UserAuthService.h>

#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr char kDefaultBusiness[] = "drive";

std::string ModuleNames(UserAuthService& service) {
    std::wstring names;
    for (const std::wstring& module : service.GetValidModule()) {
        names += (names.empty() ? L"" : L", ") + module;
    }
    return TextOrNone(names);
}

StepResult FetchConfiguration(SessionState& state) {
    UserAuthService& service = *state.service;
    if (!service.InitSysConf()) {
        return {false, SeeLog()};
    }
    return {true,
            "",
            {
                {"available in country", YesOrNo(service.IsAvailableCountry())},
                {"modules", ModuleNames(service)},
                {"account activated", YesOrNo(service.IsActiveAccount())},
            }};
}

StepResult Activate(SessionState& state) {
    UserAuthService& service = *state.service;
    const bool before = service.IsActiveAccount();
    if (!service.ActiveUser()) {
        return {false, SeeLog()};
    }
    const bool now = service.IsActiveAccount();
    const bool mustChange = state.sandbox != nullptr;  // the sandbox's account is activated by this request
    return {!mustChange || (!before && now),
            std::string("activated before: ") + YesOrNo(before) + ", now: " + YesOrNo(now)};
}

StepResult ReportInitialisation(SessionState& state) {
    const std::string& business = state.options.business;
    state.reportedBusiness = business.empty() ? kDefaultBusiness : business;
    state.service->ReportLoginTime(state.reportedBusiness);
    StepResult result{true, "business " + state.reportedBusiness};
    result.judgedByStatus = true;
    return result;
}

StepResult AskClientLogs(SessionState& state) {
    const bool answered = state.service->RequestClientLogReport();
    return {answered,
            answered ? "client logs reported: " + YesOrNo(state.service->GetClientLogReportStatus()) : SeeLog()};
}

Table DeviceTable(const std::vector<DeviceTag>& devices) {
    Table table{{"device", "alias", "category", "type", "last update", "operation", "device id"}};
    for (const DeviceTag& device : devices) {
        table.rows.push_back({ToUtf8(device.devDisplayName), ToUtf8(device.aliasName), ToUtf8(device.deviceCategory),
                              std::to_string(device.deviceType), ToUtf8(device.lastUpdateTime), ToUtf8(device.opDesc),
                              ToUtf8(device.deviceId)});
    }
    return table;
}

// Whether the newest device, which the server lists first, is the one that reported in this session.
bool IsTheReport(const std::vector<DeviceTag>& devices, const std::string& business) {
    return !devices.empty() && ToUtf8(devices.front().opDesc).find("bus:" + business) != std::string::npos;
}

StepResult ListDevices(SessionState& state) {
    std::vector<DeviceTag> devices;
    if (!state.service->GetLoginDevicesHistory(devices)) {
        return {false, SeeLog()};
    }
    const std::string count = devices.size() == 1 ? "1 device" : std::to_string(devices.size()) + " devices";
    const bool mustShowReport = state.sandbox != nullptr;
    const bool shown = IsTheReport(devices, state.reportedBusiness);
    return {!mustShowReport || shown,
            mustShowReport ? count + ", " + (shown ? "" : "not ") + "with the report before" : count,
            {},
            DeviceTable(devices)};
}

}  // namespace

std::vector<Step> ConfigurationSteps() {
    return {{"system-configuration", "system configuration", FetchConfiguration}};
}

std::vector<Step> ActivationSteps() {
    return {{"activation", "account activation", Activate}};
}

std::vector<Step> ReportSteps() {
    return {
        {"report", "initialisation reported", ReportInitialisation},
        {"client-logs", "client logs asked about", AskClientLogs},
    };
}

std::vector<Step> DeviceSteps() {
    return {{"login-devices", "login devices", ListDevices}};
}

}  // namespace host
