#include <json/json.h>

#include "UserAuthService.h"
#include "core/JsonText.h"

Json::Value UserAuthService::StringToJson(std::string text) try { return userauth::ParseLeniently(text); } catch (...) {
    return {};
}
