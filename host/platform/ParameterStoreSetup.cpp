#include "platform/ParameterStoreSetup.h"

#include <ParamStore.h>
#include <json/value.h>

#include "system/HostError.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

void RequireLoaded(bool loaded, const std::string& error) {
    if (!loaded) {
        throw HostError(kExitUsage, error);
    }
}

void LoadSettings(const Json::Value& settings) {
    std::string error;
    const std::string text = settings.toStyledString();
    RequireLoaded(GlobalParamWrapper::GetInstance()->LoadConfigurationText(text, error), error);
}

}  // namespace

void LoadParameterStore(const std::filesystem::path& file) {
    std::string error;
    RequireLoaded(GlobalParamWrapper::GetInstance()->LoadConfiguration(file.wstring(), error), error);
}

void PointParameterStoreTo(const std::string& platformUrl, const StoreFolders& folders) {
    Json::Value root;
    for (const char* const service : {"portalUrl", "syncServerUrl", "userInformationServiceUrl", "basicServiceUrl"}) {
        root[service] = platformUrl;
    }
    root["gatewayUrl"] = platformUrl + "/gateway";
    if (!folders.state.empty()) {
        root["stateFolder"] = ToUtf8(folders.state.wstring());
    }
    if (!folders.user.empty()) {
        root["appDataLocalPath"] = ToUtf8(folders.user.wstring());
    }
    LoadSettings(root);
}

void StoreLegacyItem(const std::wstring& item) {
    Json::Value root;
    root["legacyItems"]["0"] = ToUtf8(item);
    LoadSettings(root);
}

}  // namespace host
