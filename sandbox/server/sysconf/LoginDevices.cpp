#include <optional>
#include <vector>

#include "checks/AuthorizedRequest.h"
#include "checks/WireConstants.h"
#include "crypto/Sha256.h"
#include "http/JsonText.h"
#include "sysconf/Endpoints.h"

namespace sandbox {
namespace {

struct Device {
    std::optional<std::string> alias;  // what the user calls it
    std::string name;
    std::string category;
    std::string lastUpdate;
    std::string operation;
    std::optional<int> type;
};

// Every account has these beside its PC, newest first. Names are beyond ASCII, one of them beyond the basic plane: a
// client that loses characters is found out.
std::vector<Device> OtherDevices() {
    return {
        {"\u624B\u673A \U0001F4F1", "Nimba 9 Pro", "PHONE", "2024-11-05T21:40:12Z",
         "service:cloud,action:backup,bus:gallery,result:ok", 2},
        {std::nullopt, "Tablet \u00DC8 \u5E73\u677F", "PAD", "2024-09-17T06:03:55Z",
         "service:cloud,action:dataInit,bus:contacts,result:ok", 3},
        {"\u0E04\u0E2D\u0E21", "NB-0417", "PC", "2023-02-28T23:59:59Z",
         "service:client,action:dataInit,bus:drive,result:ok", std::nullopt},
    };
}

// The asking device, as far as the platform knows it from the request.
Device OwnDevice(const RequestHead& head, const OperationRecord& record) {
    constexpr int kPcType = 6;
    const auto name = head.OnlyValue("x-zv-device-name");
    return {name, name, "PC", record.time, record.description, kPcType};
}

// 32 hexadecimal digits that are always the same for this text.
std::string DeviceIdFrom(const std::string& text) {
    return LowerHex(Sha256(text)).substr(0, static_cast<std::size_t>(kDeviceIdDigits));
}

// An alias that is not there is null, a type that is not there is left out.
Json::Value EntryOf(const Device& device, const std::string& deviceId) {
    auto entry = JsonObject({{"aliasName", device.alias ? Json::Value(*device.alias) : Json::Value()},
                             {"devDisplayName", device.name},
                             {"deviceCategory", device.category},
                             {"deviceId", deviceId},
                             {"lastUpdateTime", device.lastUpdate},
                             {"opDesc", device.operation}});
    if (device.type) {
        entry["deviceType"] = *device.type;
    }
    return entry;
}

PlatformReply Devices(const PlatformRequest& request, const PlatformState& state, const OperationRecords& records) {
    const auto accessToken = EncodedAccessToken(request, kCommandLoginDevices);
    RequireQuery(request, "");
    if (request.body != kLoginDevicesBody) {
        throw Refusal(Wrong::kBody, "body is not {\"version\":\"2.0\"} in one compact line that ends in a line feed");
    }
    const auto userId = AccountOf(accessToken, state).userId;
    Json::Value list(Json::arrayValue);
    if (const auto own = records.Of(userId); !own.empty()) {
        list.append(EntryOf(OwnDevice(request.head, own.back()), request.head.OnlyValue("x-zv-device-id")));
    }
    for (const auto& device : OtherDevices()) {
        list.append(EntryOf(device, DeviceIdFrom(userId + device.name)));
    }
    return JsonReply(JsonObject({{"opRecordList", list}}));
}

}  // namespace

void AddLoginDevicesEndpoint(EndpointTable& endpoints, const PlatformState& state, const OperationRecords& records) {
    endpoints.Add("POST", kPathLoginDevices,
                  [&](const PlatformRequest& request) { return Devices(request, state, records); });
}

}  // namespace sandbox
