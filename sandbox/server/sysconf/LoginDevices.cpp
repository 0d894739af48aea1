#include "sysconf/LoginDevices.h"

#include <optional>
#include <vector>

#include "checks/EncodedAuthorization.h"
#include "checks/WireConstants.h"
#include "crypto/Sha256.h"
#include "http/JsonText.h"

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

// Every account has these beside its PC, newest first. Names beyond ASCII on purpose, one beyond the basic plane.
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
    return LowerHex(Sha256({text.begin(), text.end()})).substr(0, static_cast<std::size_t>(kDeviceIdDigits));
}

std::string RequestFault(const PlatformRequest& request, const EncodedAuthorization& authorization) {
    if (auto fault = AuthorizedHeaderFault(request, kCommandLoginDevices, authorization); !fault.empty()) {
        return fault;
    }
    if (!request.query.empty()) {
        return "the query is not empty";
    }
    return request.body == kLoginDevicesBody
               ? ""
               : "body is not {\"version\":\"2.0\"} in one compact line that ends in a line feed";
}

// An alias that is not there is null, a type that is not there is left out.
Json::Value EntryOf(const Device& device, const std::string& deviceId) {
    Json::Value entry(Json::objectValue);
    entry["aliasName"] = device.alias ? Json::Value(*device.alias) : Json::Value();
    entry["devDisplayName"] = device.name;
    entry["deviceCategory"] = device.category;
    entry["deviceId"] = deviceId;
    entry["lastUpdateTime"] = device.lastUpdate;
    entry["opDesc"] = device.operation;
    if (device.type) {
        entry["deviceType"] = *device.type;
    }
    return entry;
}

PlatformReply Devices(const PlatformRequest& request, const Account& account, const OperationRecords& records) {
    Json::Value reply(Json::objectValue);
    auto& list = reply["opRecordList"] = Json::Value(Json::arrayValue);
    if (const auto own = records.Of(account.userId); !own.empty()) {
        list.append(EntryOf(OwnDevice(request.head, own.back()), request.head.OnlyValue("x-zv-device-id")));
    }
    for (const auto& device : OtherDevices()) {
        list.append(EntryOf(device, DeviceIdFrom(account.userId + device.name)));
    }
    return {200, JsonLine(reply), {}};
}

PlatformReply AnswerDevices(const PlatformRequest& request, const PlatformState& state,
                            const OperationRecords& records) {
    const auto authorization = ReadEncodedAuthorization(request.head);
    if (const auto fault = RequestFault(request, authorization); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    const auto check = state.CheckAccessToken(authorization.accessToken);
    return check.account ? Devices(request, *check.account, records) : ErrorReply(401, check.refusal);
}

}  // namespace

void AddLoginDevicesEndpoint(EndpointTable& endpoints, const PlatformState& state, const OperationRecords& records) {
    endpoints.Add("POST", kPathLoginDevices, [&state, &records](const PlatformRequest& request) {
        return AnswerDevices(request, state, records);
    });
}

}  // namespace sandbox
