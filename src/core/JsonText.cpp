#include "core/JsonText.h"

#include <json/json.h>

#include <exception>
#include <memory>
#include <utility>

#include "UserAuthService.h"

namespace userauth {
namespace {

bool Parse(const Json::CharReaderBuilder& builder, const std::string& text, Json::Value& value) {
    try {
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        return reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

bool ParseJsonText(std::string text, Json::Value& value) {
    if (text.empty() || !Parse(Json::CharReaderBuilder(), text, value)) {
        return false;
    }
    return value.isArray() || value.isObject();
}

Json::Value ParseLeniently(const std::string& text) {
    Json::Value value;
    Parse(Json::CharReaderBuilder(), text, value);
    return value;
}

bool ParseDocument(const std::string& text, Json::Value& value) {
    // The rules of the library's older reader, which the servers' replies were written against.
    Json::CharReaderBuilder builder;
    builder["allowTrailingCommas"] = false;
    builder["skipBom"] = false;
    Json::Value parsed;
    const bool done = Parse(builder, text, parsed);
    value = done ? std::move(parsed) : Json::Value();
    return done;
}

// The two writers are deprecated in favour of a configurable one that cannot reproduce their layouts to the byte.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#elif defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4996)
#endif

std::string WriteCompactLine(const Json::Value& value) {
    return Json::FastWriter().write(value);
}

std::string WriteStyledDocument(const Json::Value& value) {
    return Json::StyledWriter().write(value);
}

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#elif defined(_MSC_VER)
#pragma warning(pop)
#endif

}  // namespace userauth

Json::Value UserAuthService::StringToJson(std::string text) try { return userauth::ParseLeniently(text); } catch (...) {
    return {};
}
