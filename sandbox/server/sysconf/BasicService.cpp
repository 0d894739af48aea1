#include "checks/AuthorizedRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "sysconf/Endpoints.h"

namespace sandbox {
namespace {

constexpr std::size_t kLongestDescription = 4096;  // of an operation

// The client does not use its JSON library for this one: a blank follows the colon.
std::string CountryBody(const std::string& countryCode) {
    return "{\"country\": \"" + countryCode + "\"}";
}

// The account's country, or none before the client knows it.
void CheckCountry(const std::string& body, const Account& account) {
    const auto expected = CountryBody(account.countryCode);
    const auto unknown = CountryBody("");
    if (body != expected && body != unknown) {
        throw Refusal(Wrong::kBody, "body is neither " + expected + " nor " + unknown);
    }
}

bool IsDescription(const std::string& text) {
    constexpr std::string_view kStart = "service:client,action:dataInit,bus:";
    constexpr std::string_view kEnd = ",result:ok";
    return text.size() >= kStart.size() + kEnd.size() && text.size() <= kLongestDescription &&
           text.compare(0, kStart.size(), kStart) == 0 &&
           text.compare(text.size() - kEnd.size(), kEnd.size(), kEnd) == 0;
}

// The operation that the body describes.
std::string OperationIn(const std::string& body) {
    const auto description = ParseJsonBody(body)["opDesc"];
    if (!description.isString() || !IsDescription(description.asString())) {
        throw Refusal(Wrong::kBody, "opDesc is not service:client,action:dataInit,bus:BUSINESS,result:ok of at most " +
                                        std::to_string(kLongestDescription) + " bytes");
    }
    if (body != JsonLine(JsonObject({{"isStored", "false"}, {"opDesc", description}}))) {
        throw Refusal(
            Wrong::kBody,
            "body is not one compact line of isStored, \"false\", and opDesc, in this order, in UTF-8 without "
            "escapes");
    }
    return description.asString();
}

PlatformReply Configuration(const AccountSettings& settings) {
    auto switches = settings.modules;
    switches[kClientSwitch] = settings.available;
    return JsonReply(
        JsonObject({{"result", settings.result}, {"userStatus", settings.userStatus}, {"params", switches}}));
}

// A result other than success activates nothing.
PlatformReply Activate(const Account& account, SettingsTable& table) {
    const auto settings = table.Change(account.userId, [](AccountSettings& changed) {
        if (changed.result == 0) {
            changed.userStatus = 1;
        }
    });
    return JsonReply(JsonObject({{"result", settings.result}, {"userStatus", settings.userStatus}}));
}

// A result other than success records nothing.
PlatformReply RecordOperation(const PlatformRequest& request, const Account& account, const SettingsTable& settings,
                              OperationRecords& records) {
    auto description = OperationIn(request.body);
    const auto result = settings.Of(account.userId).result;
    if (result == 0) {
        records.Add(account.userId, std::move(description));
    }
    return JsonReply(JsonObject({{"result", result}}));
}

PlatformReply UserRegister(const PlatformRequest& request, const AccountSettings& settings) {
    if (request.body != kUserRegisterBody) {
        throw Refusal(Wrong::kBody, "body is not " + std::string(kUserRegisterBody));
    }
    return JsonReply(JsonObject(
        {{"result", settings.result}, {"resultMap", JsonObject({{"clientLogReport", settings.clientLogReport}})}}));
}

}  // namespace

void AddBasicServiceEndpoints(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                              OperationRecords& records) {
    const auto add = [&](std::string_view path, ExtraField extra, AccountAnswer answer) {
        endpoints.Add("POST", path, BasicServicePost(extra, state, std::move(answer)));
    };
    add(kPathConfigurationFetch, ExtraField::kActiveMethod,
        [&](const PlatformRequest& request, const Account& account) {
            CheckCountry(request.body, account);
            return Configuration(settings.Of(account.userId));
        });
    add(kPathConfigurationRefresh, ExtraField::kActiveMethod,
        [&](const PlatformRequest& request, const Account& account) {
            CheckCountry(request.body, account);
            return Activate(account, settings);
        });
    add(kPathOperationRecord, ExtraField::kNone, [&](const PlatformRequest& request, const Account& account) {
        return RecordOperation(request, account, settings, records);
    });
    add(kPathUserRegister, ExtraField::kNone, [&](const PlatformRequest& request, const Account& account) {
        return UserRegister(request, settings.Of(account.userId));
    });
}

}  // namespace sandbox
