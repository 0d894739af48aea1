#include "sysconf/BasicService.h"

#include "checks/BasicServiceRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr std::size_t kLongestDescription = 4096;  // of an operation

// The client does not use its JSON library for this one: a blank follows the colon.
std::string CountryBody(const std::string& countryCode) {
    return "{\"country\": \"" + countryCode + "\"}";
}

// The account's country, or none before the client knows it.
std::string CountryFault(const std::string& body, const Account& account) {
    if (const auto parsed = ParseJsonObject(body); !parsed.reason.empty()) {
        return "body " + parsed.reason;
    }
    const auto expected = CountryBody(account.countryCode);
    const auto unknown = CountryBody("");
    return body == expected || body == unknown ? "" : "body is neither " + expected + " nor " + unknown;
}

// {"isStored", "opDesc"} as one line without blanks and without a line feed, characters beyond ASCII as they are.
std::string OperationFault(const std::string& body, const ParsedJson& parsed) {
    constexpr std::string_view kStart = "service:client,action:dataInit,bus:";
    constexpr std::string_view kEnd = ",result:ok";
    if (!parsed.reason.empty()) {
        return "body " + parsed.reason;
    }
    if (parsed.value["isStored"] != "false" || !parsed.value["opDesc"].isString()) {
        return "isStored is not \"false\", or opDesc is not a string";
    }
    const auto description = parsed.value["opDesc"].asString();
    if (description.size() < kStart.size() + kEnd.size() || description.compare(0, kStart.size(), kStart) != 0 ||
        description.compare(description.size() - kEnd.size(), kEnd.size(), kEnd) != 0) {
        return "opDesc is not " + std::string(kStart) + " and a business and " + std::string(kEnd);
    }
    if (description.size() > kLongestDescription) {
        return "opDesc has more than " + std::to_string(kLongestDescription) + " bytes";
    }
    Json::Value expected(Json::objectValue);
    expected["isStored"] = "false";
    expected["opDesc"] = description;
    return body == JsonLine(expected)
               ? ""
               : "body is not one compact line of isStored and opDesc, in this order, in UTF-8 without escapes";
}

PlatformReply Configuration(const AccountSettings& settings) {
    Json::Value reply(Json::objectValue);
    reply["result"] = settings.result;
    reply["userStatus"] = settings.userStatus;
    reply["params"] = settings.modules;
    reply["params"][kClientSwitch] = settings.available;
    return {200, JsonLine(reply), {}};
}

// A result other than success activates nothing.
PlatformReply Activate(const Account& account, SettingsTable& table) {
    const auto settings = table.Change(account.userId, [](AccountSettings& changed) {
        if (changed.result == 0) {
            changed.userStatus = 1;
        }
    });
    Json::Value reply(Json::objectValue);
    reply["result"] = settings.result;
    reply["userStatus"] = settings.userStatus;
    return {200, JsonLine(reply), {}};
}

// A result other than success records nothing.
PlatformReply RecordOperation(const PlatformRequest& request, const Account& account, const SettingsTable& settings,
                              OperationRecords& records) {
    const auto body = ParseJsonObject(request.body);
    if (const auto fault = OperationFault(request.body, body); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    const auto result = settings.Of(account.userId).result;
    if (result == 0) {
        records.Add(account.userId, body.value["opDesc"].asString());
    }
    Json::Value reply(Json::objectValue);
    reply["result"] = result;
    return {200, JsonLine(reply), {}};
}

PlatformReply UserRegister(const PlatformRequest& request, const AccountSettings& settings) {
    if (request.body != kUserRegisterBody) {
        return ErrorReply(400, "body is not " + std::string(kUserRegisterBody));
    }
    Json::Value reply(Json::objectValue);
    reply["result"] = settings.result;
    reply["resultMap"]["clientLogReport"] = settings.clientLogReport;
    return {200, JsonLine(reply), {}};
}

AccountAnswer WithCountry(std::function<PlatformReply(const Account&)> answer) {
    return [answer = std::move(answer)](const PlatformRequest& request, const Account& account) {
        const auto fault = CountryFault(request.body, account);
        return fault.empty() ? answer(account) : ErrorReply(400, fault);
    };
}

}  // namespace

void AddBasicServiceEndpoints(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                              OperationRecords& records) {
    endpoints.Add("POST", kPathConfigurationFetch,
                  BasicServicePost(ExtraField::kActiveMethod, state, WithCountry([&settings](const Account& account) {
                                       return Configuration(settings.Of(account.userId));
                                   })));
    endpoints.Add("POST", kPathConfigurationRefresh,
                  BasicServicePost(ExtraField::kActiveMethod, state, WithCountry([&settings](const Account& account) {
                                       return Activate(account, settings);
                                   })));
    endpoints.Add("POST", kPathOperationRecord,
                  BasicServicePost(ExtraField::kNone, state,
                                   [&settings, &records](const PlatformRequest& request, const Account& account) {
                                       return RecordOperation(request, account, settings, records);
                                   }));
    endpoints.Add(
        "POST", kPathUserRegister,
        BasicServicePost(ExtraField::kNone, state, [&settings](const PlatformRequest& request, const Account& account) {
            return UserRegister(request, settings.Of(account.userId));
        }));
}

}  // namespace sandbox
