#include "platform/ParameterStoreSetup.h"

#include <ParamStore.h>
#include <json/value.h>
#include <json/writer.h>

#include <fstream>

#include "system/HostError.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// By way of a file, which is how the store takes settings.
void LoadSettings(const Json::Value& settings, const std::filesystem::path& file) {
    std::ofstream(file, std::ios::binary) << Json::writeString(Json::StreamWriterBuilder(), settings);
    LoadParameterStore(file);
}

}  // namespace

void LoadParameterStore(const std::filesystem::path& file) {
    std::string error;
    if (!GlobalParamWrapper::GetInstance()->LoadConfiguration(file.wstring(), error)) {
        throw HostError(kExitUsage, error);
    }
}

void PointParameterStoreTo(const std::string& platformUrl, const std::filesystem::path& folder,
                           const StoreFolders& folders) {
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
    LoadSettings(root, folder / "parameter-store.json");
}

void StoreLegacyItem(const std::wstring& item, const std::filesystem::path& folder) {
    Json::Value root;
    root["legacyItems"]["0"] = ToUtf8(item);
    LoadSettings(root, folder / "legacy-items.json");
}

}  // namespace host
