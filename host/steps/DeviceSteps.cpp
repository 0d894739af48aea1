#include <UserAuthService.h>

#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

Table DeviceTable(const std::vector<DeviceTag>& devices) {
    Table table{{"device", "alias", "category", "type", "last update", "operation", "device id"}, {}};
    for (const DeviceTag& device : devices) {
        table.rows.push_back({ToUtf8(device.devDisplayName), ToUtf8(device.aliasName), ToUtf8(device.deviceCategory),
                              std::to_string(device.deviceType), ToUtf8(device.lastUpdateTime), ToUtf8(device.opDesc),
                              ToUtf8(device.deviceId)});
    }
    return table;
}

// Whether the first is the one that reported here: the server has the newest first.
bool IsTheReport(const std::vector<DeviceTag>& devices, const std::string& business) {
    return !devices.empty() && ToUtf8(devices.front().opDesc).find("bus:" + business) != std::string::npos;
}

StepResult ListDevices(SessionState& state) {
    std::vector<DeviceTag> devices;
    if (!state.service->GetLoginDevicesHistory(devices)) {
        return {false, SeeLog(), {}};
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

std::vector<Step> DeviceSteps(SessionState& state) {
    return {{"login-devices", "login devices", [&state] { return ListDevices(state); }}};
}

}  // namespace host
