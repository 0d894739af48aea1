#include "sysconf/BasicServiceControl.h"

#include <algorithm>
#include <iterator>

#include "http/ControlEndpoint.h"

namespace sandbox {
namespace {

constexpr const char* kPathSettings = "/sandbox/settings";
constexpr const char* kMemberModules = "modules";

struct Member {
    const char* name;
    Json::Value AccountSettings::*value;
};
constexpr Member kReplacedMembers[] = {
    {"available", &AccountSettings::available},
    {"userStatus", &AccountSettings::userStatus},
    {"clientLogReport", &AccountSettings::clientLogReport},
    {"result", &AccountSettings::result},
};

PlatformReply SettingsReply(const AccountSettings& settings) {
    Json::Value reply(Json::objectValue);
    reply[kMemberModules] = settings.modules;
    for (const auto& member : kReplacedMembers) {
        reply[member.name] = settings.*member.value;
    }
    return JsonReply(reply);
}

std::string FaultOf(const Json::Value& change) {
    for (const auto& name : change.getMemberNames()) {
        if (name != kMemberModules && std::none_of(std::begin(kReplacedMembers), std::end(kReplacedMembers),
                                                   [&](const Member& member) { return name == member.name; })) {
            return name + " is not a member of the settings";
        }
    }
    if (!change.isMember(kMemberModules)) {
        return {};
    }
    const auto& modules = change[kMemberModules];
    if (!modules.isObject()) {
        return "modules is not an object";
    }
    return modules.isMember(kClientSwitch) ? std::string(kClientSwitch) + " is no module: give available" : "";
}

// A switch that is null is taken away.
void MergeModules(const Json::Value& change, Json::Value& modules) {
    for (const auto& name : change.getMemberNames()) {
        if (change[name].isNull()) {
            modules.removeMember(name);
        } else {
            modules[name] = change[name];
        }
    }
}

PlatformReply ChangeSettings(const Json::Value& change, const PlatformState& state, SettingsTable& table) {
    if (const auto fault = FaultOf(change); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    return SettingsReply(table.Change(state.CurrentAccount().userId, [&](AccountSettings& settings) {
        MergeModules(change[kMemberModules], settings.modules);
        for (const auto& member : kReplacedMembers) {
            settings.*member.value = change.get(member.name, settings.*member.value);
        }
    }));
}

PlatformReply Reports(const PlatformState& state, const OperationRecords& records) {
    Json::Value reply(Json::objectValue);
    auto& list = reply["reports"] = Json::Value(Json::arrayValue);
    for (const auto& record : records.Of(state.CurrentAccount().userId)) {
        list.append(record.description);
    }
    return JsonReply(reply);
}

}  // namespace

void AddBasicServiceControl(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                            const OperationRecords& records) {
    endpoints.Add("POST", kPathSettings,
                  WithObject([&](const Json::Value& body) { return ChangeSettings(body, state, settings); }));
    endpoints.Add("GET", kPathSettings,
                  [&](const PlatformRequest&) { return SettingsReply(settings.Of(state.CurrentAccount().userId)); });
    endpoints.Add("GET", "/sandbox/reports", [&](const PlatformRequest&) { return Reports(state, records); });
}

}  // namespace sandbox
