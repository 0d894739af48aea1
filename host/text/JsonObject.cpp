#include "text/JsonObject.h"

#include <json/reader.h>

#include <memory>

namespace host {

std::optional<Json::Value> ParseJsonObject(const std::string& text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value root;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &root, nullptr) && root.isObject()) {
            return root;
        }
    } catch (const Json::Exception&) {  // nested too deeply
    }
    return std::nullopt;
}

std::string TextMember(const Json::Value& root, const char* name) {
    const Json::Value& member = root[name];
    return member.isString() ? member.asString() : "";
}

}  // namespace host
