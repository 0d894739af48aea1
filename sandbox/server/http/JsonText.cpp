#include "http/JsonText.h"

#include <algorithm>
#include <memory>

#include <json/reader.h>
#include <json/writer.h>

#include "http/Exchange.h"

namespace sandbox {
namespace {

constexpr int kDeepestNesting = 64;

Json::CharReaderBuilder StrictReader() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["stackLimit"] = kDeepestNesting;
    return builder;
}

}  // namespace

Json::Value ParseJsonBody(const std::string& body) {
    const std::unique_ptr<Json::CharReader> reader(StrictReader().newCharReader());
    Json::Value value;
    std::string errors;
    try {
        if (!reader->parse(body.data(), body.data() + body.size(), &value, &errors)) {
            std::replace(errors.begin(), errors.end(), '\n', ' ');
            throw Refusal(Wrong::kBody, "body is not JSON: " + std::string(Trimmed(errors)));
        }
    } catch (const Json::Exception&) {
        throw Refusal(Wrong::kBody, "body is nested too deeply");
    }
    if (!value.isObject()) {
        throw Refusal(Wrong::kBody, "body is not a JSON object");
    }
    return value;
}

Json::Value JsonObject(std::initializer_list<std::pair<const char*, Json::Value>> members) {
    Json::Value object(Json::objectValue);
    for (const auto& [name, value] : members) {
        object[name] = value;
    }
    return object;
}

std::string JsonLine(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

}  // namespace sandbox
