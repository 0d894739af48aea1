#include "JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>

namespace accountsdk {

Json::Value ParseObject(const std::string& text) {
    Json::CharReaderBuilder builder;
    builder["failIfExtra"] = true;
    builder["stackLimit"] = 32;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &root, &errors) && root.isObject()) {
            return root;
        }
    } catch (const Json::Exception&) {  // nested beyond the limit
    }
    return Json::Value();
}

std::string TextMember(const Json::Value& object, const char* name) {
    if (!object.isObject()) {
        return std::string();
    }
    const Json::Value& member = object[name];
    return member.isString() ? member.asString() : std::string();
}

std::string CompactText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

}  // namespace accountsdk
