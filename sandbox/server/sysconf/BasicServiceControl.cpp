#include "http/JsonText.h"
#include "http/OrderReader.h"
#include "sysconf/Endpoints.h"

namespace sandbox {
namespace {

constexpr const char* kPathSettings = "/sandbox/settings";

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
    auto reply = JsonObject({{"modules", settings.modules}});
    for (const auto& member : kReplacedMembers) {
        reply[member.name] = settings.*member.value;
    }
    return JsonReply(reply);
}

// Switches of modules join those that are there; one that is null is taken away.
void MergeModules(const Json::Value& change, Json::Value& modules) {
    for (const auto& name : change.getMemberNames()) {
        if (change[name].isNull()) {
            modules.removeMember(name);
        } else {
            modules[name] = change[name];
        }
    }
}

PlatformReply ChangeSettings(const Json::Value& body, const PlatformState& state, SettingsTable& table) {
    OrderReader order(body);
    const auto modules = order.Anything("modules").value_or(Json::Value(Json::objectValue));
    for (const auto& member : kReplacedMembers) {
        order.Anything(member.name);
    }
    order.RefuseOthers();
    if (!modules.isObject() || modules.isMember(kClientSwitch)) {
        throw Refusal(Wrong::kBody, std::string("modules is not an object, or ") + kClientSwitch +
                                        " is in it, which is no module: give available");
    }
    return SettingsReply(table.Change(state.CurrentAccount().userId, [&](AccountSettings& settings) {
        MergeModules(modules, settings.modules);
        for (const auto& member : kReplacedMembers) {
            settings.*member.value = body.get(member.name, settings.*member.value);
        }
    }));
}

PlatformReply Reports(const PlatformState& state, const OperationRecords& records) {
    Json::Value list(Json::arrayValue);
    for (const auto& record : records.Of(state.CurrentAccount().userId)) {
        list.append(record.description);
    }
    return JsonReply(JsonObject({{"reports", list}}));
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
