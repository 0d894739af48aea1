#include "OperationLine.h"

#include <json/json.h>

#include <chrono>
#include <cstdio>
#include <ctime>

#include "LineText.h"
#include "MaskSecrets.h"

namespace suite {
namespace {

// ISO 8601 with milliseconds: "2026-11-21T04:41:25.123Z".
std::string CurrentTimeUtc() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
    const std::time_t seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm fields{};
#if defined(_WIN32)
    gmtime_s(&fields, &seconds);
#else
    gmtime_r(&seconds, &fields);
#endif
    char date[32] = {};
    char fraction[16] = {};
    std::strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &fields);
    std::snprintf(fraction, sizeof(fraction), ".%03dZ", static_cast<int>(milliseconds % 1000));
    return std::string(date) + fraction;
}

Json::Value MaskedExtra(const std::map<std::wstring, std::wstring>& extraInformation, const SecretValues* secrets) {
    Json::Value extra(Json::objectValue);
    for (const auto& [wideName, wideText] : extraInformation) {
        const std::string name = LogTextOf(wideName, secrets);
        extra[MaskSecrets(name)] = IsSecretName(name) ? "***" : MaskSecrets(LogTextOf(wideText, secrets));
    }
    return extra;
}

std::string OneLine(const Json::Value& event) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, event);
}

}  // namespace

std::string OperationLine(int basicEventType, int operationType, int actionType,
                          const std::map<std::wstring, std::wstring>& extraInformation, const SecretValues* secrets) {
    Json::Value event(Json::objectValue);
    event["time"] = CurrentTimeUtc();
    event["event"] = basicEventType;
    event["operation"] = operationType;
    event["action"] = actionType;
    if (!extraInformation.empty()) {
        event["extra"] = MaskedExtra(extraInformation, secrets);
    }
    return OneLine(event);
}

std::string DroppedEventsLine(std::uint64_t count) {
    Json::Value event(Json::objectValue);
    event["time"] = CurrentTimeUtc();
    event["dropped"] = Json::Value::UInt64{count};
    return OneLine(event);
}

}  // namespace suite
