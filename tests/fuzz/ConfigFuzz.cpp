// What lies on the disk: the account SDK's configuration, and what an earlier version of the client left.

#include <json/json.h>

#include "FuzzTarget.h"
#include "LegacyItem.h"
#include "ServiceFixture.h"
#include "core/JsonText.h"

namespace {

void Sdk(FuzzInput input) {
    static const std::filesystem::path path = ProgramFolder() / "ZMSCoreConfig.json";
    const std::string& before = input.Text();
    WriteFile(path, before);
    UserAuthServiceAccess::UpdateAppIdConfig(Singleton());
    const std::string after = ReadFile(path);
    Json::Value value;
    if (after == before) {
        Require(!userauth::ParseDocument(before, value) || !value.isObject() || value.isMember("client_id"),
                "the application id was not set");
        return;
    }
    Json::Value former;
    Require(userauth::ParseDocument(after, value) && value.isObject(), "the configuration is broken now");
    Require(userauth::ParseDocument(before, former) && !former.isArray(), "a file was changed that is none");
    Require(value["client_id"] == "104862915", "the application id is another one");
    value.removeMember("client_id");
    if (former.isObject()) {
        former.removeMember("client_id");
    }
    // The writer has its own way with text that is not Unicode.
    const bool ascii = std::all_of(before.begin(), before.end(), [](char c) { return c >= 0; }) &&
                       before.find("\\u") == std::string::npos;
    Require(!ascii || (former.isNull() ? value.empty() : value == former), "another member was changed");
}

// An item of any text, or one that is protected as it should be.
void Legacy(FuzzInput input) {
    const bool protectedItem = input.Choice(2) == 0;
    const std::string& plain = input.Text();
    UserAuthService& service = Singleton();
    service.Clear();
    Recording() = SuiteRecording();
    Recording().legacyItem = protectedItem ? Wide(LegacyItem(plain)) : Wide(plain);
    Recording().replies = {{401, "", {}}};
    Require(service.GetOldVersionUserId().empty(), "a user id from nowhere");
    const std::size_t length = std::min(plain.find('\0'), plain.size());
    const bool hasToken = length > kLegacyTimeStamp.size();
    Require(!protectedItem || service.GetCurrentRT().empty() != hasToken, "the item's token was not read, or was none");
    Require(service.GetCurrentRT().size() <= plain.size(), "the token is longer than its item");
    Require(Recording().Lines("http Request").size() == (service.GetCurrentRT().empty() ? 0 : 1), "a request too many");
}

const FuzzTarget kTargets[] = {{"config-sdk", Sdk}, {"config-legacy", Legacy}};

}  // namespace
